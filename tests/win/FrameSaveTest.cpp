// Save As through the system's dialog: names, types, refusals, foreign letters.

#include "app/FileDialogsDlg.h"
#include "app/FileDialogsIds.h"
#include "tests/win/FrameHarness.h"
#include "text/ProfileStore.h"

#include <commctrl.h>
#include <commdlg.h>
#include <dlgs.h>

class FrameSave : public FrameTest
{
protected:
    static std::wstring FileNameBox(HWND dialog)
    {
        const HWND combo = GetDlgItem(dialog, cmb13);
        return WindowText(combo ? combo : GetDlgItem(dialog, edt1));
    }
    static void SelectType(HWND dialog, int index)
    {
        SendDlgItemMessageW(dialog, cmb1, CB_SETCURSEL, WPARAM(index), 0);
        SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(cmb1, CBN_SELENDOK),
                     reinterpret_cast<LPARAM>(GetDlgItem(dialog, cmb1)));
    }
    static HWND QualityRow(HWND dialog)
    {
        for (HWND child = GetWindow(dialog, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT))
            if (GetDlgItem(child, IDC_QUALITY_SLIDER))
                return child;
        return nullptr;
    }
    static RECT OnScreen(HWND hwnd)
    {
        RECT place = {};
        GetWindowRect(hwnd, &place);
        return place;
    }
    // Saves under a name in the folder with the given entry of the type box.
    void SaveAs(const std::wstring& name, int type,
                std::vector<std::function<void(HWND)>> boxes = {})
    {
        std::vector<std::function<void(HWND)>> steps = {[=](HWND dialog)
                                                        {
                                                            SelectType(dialog, type);
                                                            ChooseFile(dialog, Folder(), name);
                                                        }};
        steps.insert(steps.end(), boxes.begin(), boxes.end());
        RunModal([] { Command(ID_FILE_SAVEAS); }, steps);
    }
    std::wstring Folder() const { return WideOf(folder.path.u8string()); }
    void OpenWithResult(const char* name, int bits = 8)
    {
        OpenPicture(name, 64, 48, 3, bits);
        MakeResult(99);
        CBxPicBufAPI::Copy(FrameDocument().result.Record(), FrameDocument().source);
    }
};

TEST_F(FrameSave, ProposesNameAndTypeAndRemembersTheQuality)
{
    (void)WriteNumber(UserSettingsFile(), L"General", L"jpeg", 70);
    OpenWithResult("photo.one.jpg");
    RunModal([] { Command(ID_FILE_SAVEAS); },
             {[&](HWND dialog)
              {
                  EXPECT_EQ(WindowText(dialog), Text(kTextSaveAs));
                  EXPECT_EQ(FileNameBox(dialog).substr(0, 14), L"photo.one-vexa");
                  EXPECT_EQ(SendDlgItemMessageW(dialog, cmb1, CB_GETCOUNT, 0, 0), 4);
                  const HWND row = QualityRow(dialog);
                  ASSERT_TRUE(row);
                  const HWND slider = GetDlgItem(row, IDC_QUALITY_SLIDER);
                  EXPECT_EQ(WindowText(GetDlgItem(row, IDC_QUALITY_LABEL)), Text(kTextJpegQuality));
                  EXPECT_EQ(OnScreen(GetDlgItem(row, IDC_QUALITY_LABEL)).left,
                            OnScreen(GetDlgItem(dialog, stc2)).left);
                  RECT box = OnScreen(GetDlgItem(dialog, cmb1)), channel = {};
                  SendMessageW(slider, TBM_GETCHANNELRECT, 0, LPARAM(&channel));
                  EXPECT_EQ(OnScreen(slider).left + channel.left, box.left);
                  EXPECT_EQ(OnScreen(GetDlgItem(row, IDC_QUALITY_PERCENT)).right, box.right);
                  EXPECT_TRUE(IsWindowEnabled(slider)) << "JPEG, as the photograph is";
                  SelectType(dialog, 0);
                  EXPECT_FALSE(IsWindowEnabled(slider)) << "BMP is on";
                  SelectType(dialog, 3);
                  EXPECT_TRUE(IsWindowEnabled(slider));
                  EXPECT_EQ(SendMessageW(slider, TBM_GETPOS, 0, 0), 70);
                  SendMessageW(row, WM_HSCROLL, TB_LINEDOWN, reinterpret_cast<LPARAM>(slider));
                  EXPECT_EQ(WindowText(GetDlgItem(row, IDC_QUALITY_VALUE)), L"71");
                  ChooseFile(dialog, Folder(), L"quality");
              }});
    EXPECT_EQ(ReadNumber(UserSettingsFile(), L"General", L"jpeg", 0), 71);
    EXPECT_GT(ReadBytes(folder.File("quality.jpg")).size(), 0u);
    std::wstring given = Wide("given.tif"); // without the dialog
    EXPECT_TRUE(
        SavePictureAs(g_hwndMain, FrameDocument().result, FrameDocument().alpha, L"", &given));
    EXPECT_FALSE(LoadedPair(folder.File("given.tif")).failed);
}

// The type of the source's ending, and two types only for 16 bits.
TEST_F(FrameSave, BeginsWithTheTypeOfThePhotograph)
{
    const struct
    {
        const char* name;
        int bits, types, selected;
    } rows[] = {{"a.jpg", 8, 4, 3}, {"b.tif", 8, 4, 1}, {"c.png", 16, 2, 1}, {"d.tif", 16, 2, 0}};
    for (const auto& row : rows)
    {
        OpenWithResult(row.name, row.bits);
        RunModal([] { Command(ID_FILE_SAVEAS); },
                 {[&](HWND dialog)
                  {
                      const auto ask = [&](UINT message)
                      { return SendDlgItemMessageW(dialog, cmb1, message, 0, 0); };
                      EXPECT_EQ(ask(CB_GETCOUNT), row.types) << row.name;
                      EXPECT_EQ(ask(CB_GETCURSEL), row.selected) << row.name;
                      PressButton(dialog, IDCANCEL);
                  }});
        EXPECT_TRUE(FrameDocument().unsaved);
        EXPECT_EQ(Title(), L"Plenoviz - " + Wide(row.name));
        FrameDocument().unsaved = false;
    }
}

TEST_F(FrameSave, AsksBeforeItOverwrites)
{
    OpenWithResult("photo.png");
    folder.Write("there.png", {1, 2, 3});
    // Back in the dialog after No: enough of it.
    const auto no = [](HWND box)
    {
        const HWND dialog = GetWindow(box, GW_OWNER);
        PressButton(box, IDNO);
        PressButton(dialog, IDCANCEL);
    };
    const auto yes = [](HWND box) { PressButton(box, IDYES); };
    for (const wchar_t* name : {L"there.png", L"there"})
    {
        SaveAs(name, 2, {no});
        EXPECT_EQ(ReadBytes(folder.File("there.png")), Bytes({1, 2, 3}));
        EXPECT_TRUE(FrameDocument().unsaved);
    }
    SaveAs(L"there", 2, {yes});
    EXPECT_FALSE(FrameDocument().unsaved);
    EXPECT_EQ(LoadedPair(folder.File("there.png")).picture->width, 64);
}

TEST_F(FrameSave, AFailureKeepsFileMarkAndTitle)
{
    OpenWithResult("photo.png");
    const std::wstring title = Title();
    folder.Write("locked.png", {1, 2, 3});
    // Open elsewhere: neither written nor replaced.
    const HANDLE held = CreateFileW(Wide("locked.png").c_str(), GENERIC_READ, FILE_SHARE_READ,
                                    nullptr, OPEN_EXISTING, 0, nullptr);
    SaveAs(L"locked.png", 2,
           {[](HWND box) { PressButton(box, IDYES); },
            [&](HWND box)
            {
                EXPECT_EQ(WindowText(box), Text(kTextError));
                EXPECT_NE(MessageBoxText(box).find(Text(kTextCannotOpenFile)), std::wstring::npos);
                EXPECT_NE(MessageBoxText(box).find(Wide("locked.png")), std::wstring::npos);
                EXPECT_NE(MessageBoxText(box).find(Text(kTextSaveWrite)), std::wstring::npos);
                PressButton(box, IDOK);
            }});
    CloseHandle(held);
    EXPECT_EQ(ReadBytes(folder.File("locked.png")), Bytes({1, 2, 3}));
    EXPECT_TRUE(FrameDocument().unsaved);
    EXPECT_EQ(Title(), title);

    // A source that has vanished costs its metadata only.
    std::filesystem::remove(std::filesystem::u8path(folder.File("photo.png")));
    SaveAs(L"rescued.png", 2,
           {[&](HWND box)
            {
                EXPECT_NE(MessageBoxText(box).find(Wide("photo.png")), std::wstring::npos);
                PressButton(box, IDOK);
            }});
    EXPECT_FALSE(FrameDocument().unsaved);
    EXPECT_EQ(LoadedPair(folder.File("rescued.png")).picture->width, 64);
}
