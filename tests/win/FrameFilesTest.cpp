// Opening: by drop and by dialog, every kind that is taken and every kind that is refused.

#include "app/FileDialogsDlg.h"
#include "tests/win/FrameHarness.h"

#include <algorithm>

class FrameFiles : public FrameTest
{
protected:
    // Everything that a refused or cancelled open leaves alone.
    std::wstring Snapshot() const
    {
        return Title() + L"|" + FrameDocument().file + L"|" + ZoomBoxText() + L"|" + StatusText() +
               L"|" + std::to_wstring(HashOf(FrameDocument().source)) + L"|" +
               std::to_wstring(HashOf(g_displayDocument.display)) + L"|" +
               std::to_wstring(int(FrameDocument().unsaved)) + WideOf(Enabled());
    }
};

TEST_F(FrameFiles, OpensEveryKind)
{
    struct Row
    {
        const char* name;
        int width, height, components, bits;
        bool alpha;
    };
    const Row rows[] = {
        {"grey.bmp", 40, 30, 1, 8, false},      {"colour.tif", 41, 31, 3, 8, false},
        {"clear.png", 42, 32, 3, 8, true},      {"deep.tif", 43, 33, 3, 16, false},
        {"deepgrey.png", 44, 34, 1, 16, false}, {"deepclear.png", 45, 35, 3, 16, true},
        {"dot.png", 1, 1, 3, 8, false},         {"strip.png", 20000, 100, 3, 8, false},
    };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(row.name);
        const TestPicture picture =
            ScenePicture(row.width, row.height, row.components, row.bits, 0);
        const TestPicture alpha = FlatPicture(row.width, row.height, row.bits, {0});
        Save(picture, folder.File(row.name), kFormatFromName, "", row.alpha ? &alpha : nullptr);
        Drop({Wide(row.name)});
        EXPECT_EQ(FrameDocument().file, Wide(row.name));
        EXPECT_EQ(Title(), L"Plenoviz - " + Wide(row.name));
        EXPECT_EQ(ZoomBoxText(), L"100.0 %");
        EXPECT_EQ(Enabled(), "111111111");
        EXPECT_TRUE(FrameDocument().showsSource);
        EXPECT_EQ(FrameDocument().alpha->data != nullptr, row.alpha);
        ExpectSamePicture(FrameDocument().source, picture);
        const Bytes corner = ViewPixel(0, 0), centre = ViewCentre();
        EXPECT_EQ(corner, Bytes({190, 190, 190})) << "background";
        if (row.alpha)
            EXPECT_TRUE(centre == Bytes({190, 190, 190}) || centre == Bytes({220, 220, 220}));
        else if (row.bits == 8 && row.width > 1)
        {
            for (int c = 0; c < 3; ++c)
                EXPECT_NEAR(centre[size_t(c)],
                            picture.At(row.width / 2, row.height / 2, row.components == 3 ? c : 0),
                            1);
        }
    }
}

TEST_F(FrameFiles, ToolsAskForAPictureThatHasNoName)
{
    Save(ScenePicture(12, 9, 3, 8, 0), folder.File("picked.png"));
    Picture picture, alpha;
    RunModal([&] { EXPECT_TRUE(LoadSilently(L"", &picture, &alpha)); },
             {[&](HWND dialog)
              {
                  EXPECT_EQ(WindowText(dialog), Text(kTextLoadItem));
                  ChooseFile(dialog, WideOf(folder.path.u8string()), L"picked.png");
              }});
    EXPECT_EQ(picture->width, 12);
}

TEST_F(FrameFiles, RefusesWithOneMessageAndChangesNothing)
{
    folder.Write("float.tif", MakeTiff({1, 1, 1, 32, 1, 3, {0, 0, 0x80, 0x3f}}));
    folder.Write("broken.jpg", {0xff, 0xd8, 0xff, 0xe0, 0, 16, 'J', 'F'});
    folder.Write("empty.tif", {});

    OpenPicture("good.png", 60, 40);
    const Bytes good = ReadBytes(folder.File("good.png"));
    folder.Write("cut.png", Bytes(good.begin(), good.end() - 40));
    Command(ID_ZOOM_IN);
    const std::wstring before = Snapshot();
    for (const char* name : {"cut.png", "float.tif", "broken.jpg", "empty.tif", "missing.png"})
    {
        SCOPED_TRACE(name);
        RunModal([&] { Drop({Wide(name)}); }, {Box(kTextFormatNotSupported, kNoText)});
        EXPECT_EQ(Snapshot(), before);
    }
}

TEST_F(FrameFiles, DropTakesTheFirstFileAndAsksAboutAResult)
{
    Save(ScenePicture(30, 20, 3, 8, 0), folder.File("first.png"));
    Save(ScenePicture(31, 21, 3, 8, 0), folder.File("second.png"));
    Drop({Wide("first.png"), Wide("second.png")});
    EXPECT_EQ(FrameDocument().source->width, 30);
    MakeResult(77);
    const std::wstring before = Snapshot();
    RunModal([&] { Drop({Wide("second.png")}); }, {Box(kTextUnsavedQuestion, kTextWarning, IDNO)});
    EXPECT_EQ(Snapshot(), before);
    RunModal([&] { Drop({Wide("second.png")}); }, {Box(kTextUnsavedQuestion, kTextWarning, IDYES)});
    EXPECT_EQ(FrameDocument().source->width, 31);
    EXPECT_FALSE(FrameDocument().unsaved);
    EXPECT_EQ(FrameDocument().result->data, nullptr) << "the old photograph's result";

    for (const DocumentPhase phase : {DocumentPhase::ToolOpen, DocumentPhase::Computing})
    {
        FrameDocument().phase = phase;
        Drop({Wide("first.png")});
        FrameDocument().phase = DocumentPhase::Idle;
        EXPECT_EQ(FrameDocument().source->width, 31);
    }
}

// Whether there are letters in the middle of the view.
static bool IsInvited()
{
    bool dark = false;
    for (int x = 300; x < 480; ++x) // beside what is open
        for (int y = kAreaHeight / 2 - 10; y < kAreaHeight / 2 + 10; ++y)
            dark = dark || ViewPixel(x, y)[0] < 60;
    return dark;
}

TEST_F(FrameFiles, AnEmptyViewInvitesUntilAPictureIsOpen)
{
    EXPECT_TRUE(IsInvited());
    OpenPicture("photo.png", 6, 4);
    EXPECT_FALSE(IsInvited());
}

TEST_F(FrameFiles, CloseForgetsEverything)
{
    OpenPicture("photo.png", 60, 40);
    MakeResult(60);
    RunModal([] { Command(ID_FILE_CLOSE); }, {Box(kTextUnsavedQuestion, kTextWarning, IDNO)});
    EXPECT_EQ(ViewCentre(), Bytes({60, 60, 60}));
    RunModal([] { Command(ID_FILE_CLOSE); }, {Box(kTextUnsavedQuestion, kTextWarning, IDYES)});
    EXPECT_EQ(Enabled(), "110000000");
    EXPECT_EQ(Title(), L"Plenoviz");
    EXPECT_EQ(FrameDocument().file, L"");
    EXPECT_FALSE(FrameDocument().unsaved || FrameDocument().showsSource);
    EXPECT_EQ(ViewPixel(500, 100), Bytes({190, 190, 190}));
    EXPECT_TRUE(IsInvited());
    const Document& document = FrameDocument();
    for (const Picture* picture : {&document.source, &document.result, &document.preview})
        EXPECT_TRUE(picture->Empty());
    Command(ID_FILE_SAVEAS); // greyed: no dialog
    OpenPicture("again.png", 20, 10);
    EXPECT_TRUE(FrameDocument().showsSource);
}

// Entries in use of the process's own table of graphics objects; wine has no other count.
static int GraphicsObjects()
{
    struct Entry
    {
        uint64_t object;
        uint32_t owner;
        uint16_t generation;
        uint8_t type, flags;
        uint64_t user;
    };
    constexpr int kEntries = 0x4000;
    constexpr size_t kTableInProcessBlock = 0xF8;
    using ProcessBlock = const uint8_t* (*)();
    static const ProcessBlock processBlock = reinterpret_cast<ProcessBlock>(reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "RtlGetCurrentPeb")));
    const Entry* table =
        *reinterpret_cast<const Entry* const*>(processBlock() + kTableInProcessBlock);
    return int(
        std::count_if(table, table + kEntries, [](const Entry& entry) { return entry.type != 0; }));
}

static int Windows()
{
    int count = 0;
    EnumChildWindows(
        GetDesktopWindow(),
        [](HWND window, LPARAM found) -> BOOL
        {
            DWORD process;
            GetWindowThreadProcessId(window, &process);
            *reinterpret_cast<int*>(found) += process == GetCurrentProcessId();
            return TRUE;
        },
        reinterpret_cast<LPARAM>(&count));
    return count;
}

TEST_F(FrameFiles, ObjectsDoNotGrow)
{
    const auto cycle = [this]
    {
        Drop({Wide("photo.png")});
        for (const int id : {ID_ZOOM_IN, ID_ZOOM_OUT, ID_ZOOM_FIT, ID_ZOOM_100, ID_FILE_CLOSE})
            Command(id);
        UpdateWindow(g_hwndMain);
        SetClientSize(900, 600);
        SetClientSize(1000, 700);
    };
    Save(ScenePicture(300, 200, 3, 8, 0), folder.File("photo.png"));
    RunMenu([](HMENU) {});
    cycle();
    const int graphics = GraphicsObjects(), windows = Windows();
    const HGDIOBJ one = CreateSolidBrush(RGB(1, 2, 3));
    EXPECT_EQ(GraphicsObjects(), graphics + 1) << "the count sees an object";
    DeleteObject(one);
    DWORD handles = 0, handlesAfter = 0;
    GetProcessHandleCount(GetCurrentProcess(), &handles);
    for (int i = 0; i < 200; ++i)
        cycle();
    RunMenu([](HMENU) {});
    GetProcessHandleCount(GetCurrentProcess(), &handlesAfter);
    EXPECT_LE(GraphicsObjects(), graphics);
    EXPECT_LE(Windows(), windows);
    EXPECT_LE(handlesAfter, handles + 2);
}
