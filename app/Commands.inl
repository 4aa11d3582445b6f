// Every command of the frame in one row, in the order of menu and toolbar. CommandRules.cpp makes
// the table of rules of it, CommandsWnd.cpp the one of handlers: a row without either does not
// compile.
//
// id, handler | what switches it off, menu, its text there, the keys named behind it, toolbar,
// image, tooltip, key

// clang-format off
COMMAND(ID_FILE_OPEN, OnOpen, CommandGroup::Open,
        MenuPlace::File, kTextLoadItem, L"\tCtrl+O",
        ToolbarPlace::Next, L"IDP_FOLDER", kTextLoadTip, {CommandKey::Control, 'O'})
COMMAND(ID_FILE_SAVEAS, OnSaveAs, CommandGroup::Save,
        MenuPlace::File, kTextSaveAs, L"\tCtrl+S",
        ToolbarPlace::Next, L"IDP_SAVE", kTextSaveTip, {CommandKey::Control, 'S'})
COMMAND(ID_FILE_CLOSE, OnClose, CommandGroup::Save,
        MenuPlace::File, kTextClose, L"",
        ToolbarPlace::None, nullptr, kNoText, {})
COMMAND(ID_OPTIONS, OnOptions, CommandGroup::Always,
        MenuPlace::FileAfterLine, kTextOptionsItem, L"",
        ToolbarPlace::None, nullptr, kNoText, {})
COMMAND(IDM_EXIT, OnExit, CommandGroup::Always,
        MenuPlace::FileAfterLine, kTextExit, L"",
        ToolbarPlace::None, nullptr, kNoText, {})
COMMAND(ID_SMART_CONTRAST, StartSmartContrast, CommandGroup::SingleImageTool,
        MenuPlace::Vexa, kTextSmartContrastItem, L"",
        ToolbarPlace::AfterLine, L"CONTRAST", kTextSmartContrastItem, {})
COMMAND(ID_SINGLE_LIGHT, StartSingleImage, CommandGroup::SingleImageTool,
        MenuPlace::Vexa, kTextSingleImageItem, L"",
        ToolbarPlace::Next, L"LIGHT", kTextSingleImageItem, {})
COMMAND(ID_MULTI_IMAGE, StartMultiImage, CommandGroup::Open,
        MenuPlace::Vexa, kTextMultiImageItem, L"",
        ToolbarPlace::Next, L"MULTI", kTextMultiImageTip, {})
COMMAND(ID_DAYLIGHT_UP, StartDaylightUp, CommandGroup::SingleImageTool,
        MenuPlace::Vexa, kTextDaylightUpItem, L"",
        ToolbarPlace::AfterLine, L"LIGHT_UP", kTextDaylightUpItem, {})
COMMAND(ID_DAYLIGHT_DOWN, StartDaylightDown, CommandGroup::SingleImageTool,
        MenuPlace::Vexa, kTextDaylightDownItem, L"",
        ToolbarPlace::Next, L"LIGHT_DOWN", kTextDaylightDownItem, {})
COMMAND(ID_TONE_MAPPING, StartToneMapping, CommandGroup::SingleImageTool,
        MenuPlace::Vexa, kTextToneMappingItem, L"",
        ToolbarPlace::Next, L"COLORMAP", kTextToneMappingItem, {})
COMMAND(IDM_ABOUT, OnAbout, CommandGroup::Always,
        MenuPlace::Help, kTextAboutItem, L"",
        ToolbarPlace::None, nullptr, kNoText, {CommandKey::AltLetter, '?'})
COMMAND(ID_ZOOM_IN, OnZoomIn, CommandGroup::Always,
        MenuPlace::None, kNoText, L"",
        ToolbarPlace::AfterGap, L"IDP_ZOOMIN", kTextZoomInTip, {CommandKey::Letter, '+'})
COMMAND(ID_ZOOM_OUT, OnZoomOut, CommandGroup::Always,
        MenuPlace::None, kNoText, L"",
        ToolbarPlace::Next, L"IDP_ZOOMOUT", kTextZoomOutTip, {CommandKey::Letter, '-'})
COMMAND(ID_ZOOM_100, OnZoom100, CommandGroup::Always,
        MenuPlace::None, kNoText, L"",
        ToolbarPlace::Next, L"IDP_ZOOM100", kTextZoom100Tip, {})
COMMAND(ID_ZOOM_FIT, OnZoomFit, CommandGroup::Always,
        MenuPlace::None, kNoText, L"",
        ToolbarPlace::Next, L"IDP_ZOOMFIT", kTextZoomFitTip, {})
COMMAND(ID_ZOOM_COMBO, OnZoomPreset, CommandGroup::Always, // a place that the zoom box lies on
        MenuPlace::None, kNoText, L"",
        ToolbarPlace::Next, nullptr, kTextZoomBoxTip, {})
COMMAND(ID_MENU_BUTTON, PopUpCommandMenu, CommandGroup::Always,
        MenuPlace::None, kNoText, L"",
        ToolbarPlace::Next, L"IDP_PICKER", kNoText, {})
COMMAND(ID_HELP_CONTENTS, OnHelp, CommandGroup::Always,
        MenuPlace::None, kNoText, L"",
        ToolbarPlace::None, nullptr, kNoText, {CommandKey::Key, CommandKey::F1})
COMMAND(ID_SWITCH_VIEW, SwitchView, CommandGroup::Always,
        MenuPlace::None, kNoText, L"",
        ToolbarPlace::None, nullptr, kNoText, {CommandKey::Key, CommandKey::F5})
COMMAND(ID_SOURCE_PREV, ShowPreviousSource, CommandGroup::Always,
        MenuPlace::None, kNoText, L"",
        ToolbarPlace::None, nullptr, kNoText, {CommandKey::Key, CommandKey::Left})
COMMAND(ID_SOURCE_NEXT, ShowNextSource, CommandGroup::Always,
        MenuPlace::None, kNoText, L"",
        ToolbarPlace::None, nullptr, kNoText, {CommandKey::Key, CommandKey::Right})
// clang-format on
