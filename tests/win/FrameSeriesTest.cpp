// Several photographs at once: wrong picks, paging, switching, and the tools' first questions.

#include "app/AppState.h"
#include "app/AppWindows_win.h"
#include "app/CommandIds.h"
#include "app/FrameView_win.h"
#include "app/Strings.h"
#include "tests/win/FrameHarness.h"

#include <cwchar>

class FrameSeries : public FrameTest
{
protected:
    // A series of flat pictures with brightness 40, 80, 120, as the command leaves it.
    void ShowSeries()
    {
        for (int i = 0; i < 3; ++i)
        {
            const double level = 40.0 * (i + 1);
            const std::string name = "s" + std::to_string(i) + ".png";
            Save(FlatPicture(64, 48, 8, {level, level, level}), folder.File(name));
            std::wcscpy(g_sourceFiles[i], Wide(name).c_str());
        }
        Drop({Wide("s0.png")});
        g_multiImageMode = true;
        g_sourceCount = 3;
    }
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
    const struct
    {
        const wchar_t* names;
        int string;
        const wchar_t* broken; // file named behind the text
    } rows[] = {{L"a.png", 77, nullptr},
                {L"\"a.png\" \"broken.png\"", 33, L"broken.png"},
                {L"\"a.png\" \"wide.png\"", 54, nullptr},
                {L"\"grey.png\" \"a.png\"", 54, nullptr}};
    OpenPicture("before.png", 100, 70);
    const std::wstring title = Title();
    const Bytes shown = ViewCentre();
    const std::wstring inFolder = WideOf(folder.path.u8string());
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.string);
        RunModal([] { Command(ID_MULTI_IMAGE); },
                 {[&](HWND dialog) { ChooseFile(dialog, inFolder, row.names); },
                  [&](HWND box)
                  {
                      std::wstring text = g_strings[row.string];
                      if (row.broken)
                          text += L" " + Wide("broken.png");
                      EXPECT_EQ(MessageBoxText(box), text);
                      EXPECT_EQ(WindowText(box), g_strings[3]);
                      PressButton(box, IDOK);
                  }});
        EXPECT_EQ(g_sourceCount, 0);
        EXPECT_EQ(Title(), title);
        EXPECT_EQ(ViewCentre(), shown);
        Command(ID_SWITCH_VIEW);
        Command(ID_SOURCE_NEXT);
        EXPECT_EQ(ViewCentre(), shown) << "there is nothing to page through";
        EXPECT_EQ(Enabled(), "111111111");
    }
    RunModal([] { Command(ID_MULTI_IMAGE); }, {[](HWND dialog) { PressButton(dialog, IDCANCEL); }});
    EXPECT_FALSE(g_multiImageMode);
}

TEST_F(FrameSeries, PagingWrapsAround)
{
    ShowSeries();
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
                  std::wstring(L"Showing ") + row.number + L" of 3. " + g_strings[55]);
    }
    EXPECT_EQ(g_szCurrentFile, Wide("s0.png")) << "name and metadata stay the first one's";
}

TEST_F(FrameSeries, F5SwitchesBetweenSourcesAndResult)
{
    ShowSeries();
    MakeResult(200);
    EXPECT_EQ(ViewCentre(), Flat(200));
    Command(ID_SOURCE_NEXT);
    EXPECT_EQ(ViewCentre(), Flat(200)) << "pages sources only";
    Command(ID_SWITCH_VIEW);
    EXPECT_EQ(ViewCentre(), Flat(40));
    EXPECT_EQ(StatusText(), std::wstring(L"Showing 1 of 3. ") + g_strings[31]);
    Command(ID_SWITCH_VIEW);
    EXPECT_EQ(ViewCentre(), Flat(200));
    EXPECT_EQ(StatusText(), g_strings[56]);
    g_resultUnsaved = false;

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
                         ID_TONE_MAPPING, ID_MULTI_IMAGE})
    {
        RunModal([id = id] { Command(id); }, {Box(21, 3, IDNO)});
        EXPECT_TRUE(g_resultUnsaved) << id;
        EXPECT_EQ(ViewCentre(), Flat(99)) << id;
        EXPECT_EQ(g_hwndActiveTool, nullptr) << id;
        EXPECT_EQ(Enabled(), "111111111") << id;
    }
}
