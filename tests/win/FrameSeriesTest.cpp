// Several photographs at once: wrong picks, paging, switching, and the tools' first questions.

#include "tests/win/FrameHarness.h"

class FrameSeries : public FrameTest
{
protected:
    static Bytes Flat(uint8_t level) { return {level, level, level}; }
};

TEST_F(FrameSeries, WrongPicksAreToldOnce)
{
    const auto picture = [&](const char* name, int width, int components)
    { Save(ScenePicture(width, 40, components, 8, 0), folder.File(name)); };
    picture("a.png", 60, 3);
    picture("wide.png", 61, 3);
    picture("grey.png", 60, 1);
    folder.Write("broken.png", {1, 2, 3});
    const std::pair<const wchar_t*, std::wstring> rows[] = {
        {L"a.png", Text(kTextSelectSeveral)},
        {L"\"a.png\" \"broken.png\"", Text(kTextCannotOpenFile) + (L" " + Wide("broken.png"))},
        {L"\"a.png\" \"wide.png\"", Text(kTextSameResolution)},
        {L"\"grey.png\" \"a.png\"", Text(kTextSameResolution)}};
    OpenPicture("before.png", 100, 70);
    const std::wstring title = Title();
    const Bytes shown = ViewCentre();
    RunModal([] { Command(ID_MULTI_IMAGE); }, {[](HWND dialog) { PressButton(dialog, IDCANCEL); }});
    EXPECT_FALSE(FrameDocument().series.chosenByUser);
    for (const auto& [names, text] : rows)
    {
        RunModal([] { Command(ID_MULTI_IMAGE); },
                 {[&, names = names](HWND dialog)
                  { ChooseFile(dialog, WideOf(folder.path.u8string()), names); },
                  [&, text = text](HWND box)
                  {
                      EXPECT_EQ(MessageBoxText(box), text);
                      EXPECT_EQ(WindowText(box), Text(kTextWarning));
                      PressButton(box, IDOK);
                  }});
        for (const int id : {ID_SWITCH_VIEW, ID_SOURCE_NEXT}) // there is nothing to page through
            Command(id);
        EXPECT_TRUE(FrameDocument().series.chosenByUser);
        EXPECT_TRUE(FrameDocument().series.files.empty());
        EXPECT_EQ(Title(), title);
        EXPECT_EQ(ViewCentre(), shown);
        EXPECT_EQ(Enabled(), "111111111");
    }
    Command(ID_SMART_CONTRAST); // a tool ends it, and gives all commands back
    Command(ID_MULTI_IMAGE);    // off
    SendMessageW(g_hwndActiveTool, WM_COMMAND, IDCANCEL, 0);
    EXPECT_EQ(Enabled(), "111111111");
}

TEST_F(FrameSeries, IsPagedThroughAndComparedWithItsResult)
{
    std::vector<std::wstring> files;
    for (int i = 0; i < 3; ++i) // flat pictures of brightness 40, 80, 120
    {
        const double level = 40.0 * (i + 1);
        const std::string name = "s" + std::to_string(i) + ".png";
        Save(FlatPicture(64, 48, 8, {level, level, level}), folder.File(name));
        files.push_back(Wide(name));
    }
    Drop({Wide("s0.png")});
    FrameDocument().series.chosenByUser = true;
    GiveSeries(files);
    const struct
    {
        int command;
        uint8_t level;
        const wchar_t* number;
    } rows[] = {{ID_SOURCE_NEXT, 80, L"2"},
                {ID_SOURCE_NEXT, 120, L"3"},
                {ID_SOURCE_NEXT, 40, L"1"},
                {ID_SOURCE_PREV, 120, L"3"}};
    for (const auto& row : rows)
    {
        Command(row.command);
        EXPECT_EQ(ViewCentre(), Flat(row.level));
        EXPECT_EQ(StatusText(),
                  std::wstring(L"Showing ") + row.number + L" of 3. " + Text(kTextUseArrowsOrF5));
    }
    EXPECT_EQ(FrameDocument().file, Wide("s0.png")) << "name and metadata stay the first one's";

    MakeResult(200);
    Command(ID_SOURCE_NEXT);
    EXPECT_EQ(ViewCentre(), Flat(200)) << "pages sources only";
    Command(ID_SWITCH_VIEW);
    EXPECT_EQ(ViewCentre(), Flat(120));
    EXPECT_EQ(StatusText(), std::wstring(L"Showing 3 of 3. ") + Text(kTextUseArrows));
    Command(ID_SWITCH_VIEW);
    EXPECT_EQ(ViewCentre(), Flat(200));
    EXPECT_EQ(StatusText(), Text(kTextPressF5));
    FrameDocument().unsaved = false;

    OpenPicture("single.png", 64, 48);
    const Bytes shown = ViewCentre();
    for (const int id : {ID_SWITCH_VIEW, ID_SOURCE_NEXT, ID_SOURCE_PREV})
        Command(id);
    EXPECT_EQ(ViewCentre(), shown) << "one photograph is no series";
    EXPECT_EQ(StatusText(), L"");
    EXPECT_EQ(Enabled(), "111111111");
}

TEST_F(FrameSeries, ToolsKeepTheResultOnNo)
{
    OpenPicture("photo.png", 64, 48);
    MakeResult(99);
    for (const int id : {ID_SMART_CONTRAST, ID_SINGLE_LIGHT, ID_DAYLIGHT_UP, ID_DAYLIGHT_DOWN,
                         ID_TONE_MAPPING, ID_MULTI_IMAGE, ID_FILE_OPEN})
    {
        RunModal([id = id] { Command(id); }, {Box(kTextUnsavedQuestion, kTextWarning, IDNO)});
        EXPECT_TRUE(FrameDocument().unsaved) << id;
        EXPECT_EQ(ViewCentre(), Flat(99)) << id;
        EXPECT_EQ(g_hwndActiveTool, nullptr) << id;
        EXPECT_EQ(Enabled(), "111111111") << id;
    }
}
