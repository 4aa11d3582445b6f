#pragma once

#include "app/AppWindows_win.h"
#include "app/CommandIds.h"
#include "app/FrameView_win.h"
#include "app/Frame_win.h"
#include "tests/support/TestFiles.h"
#include "tests/win/ModalScript.h"
#include "text/Strings.h"

#include <gtest/gtest.h>

#include <string>

// The real frame window in the test's own process: commands, drops and mouse messages are sent to
// it, message boxes and dialogs are played by RunModal, and the state is read where it lives.
//
// The client area is 1000 pixels wide and as high as leaves 998 x 640 pixels for the view.
constexpr int kAreaHeight = 640;

class FrameTest : public testing::Test
{
protected:
    TempFolder folder;

    void SetUp() override;
    void TearDown() override;

    // Without the client size that the tests count on; with whatever lies in the settings.
    void StartFrame();
    void CloseFrame(); // as the system menu does; answers nothing

    std::wstring Title() const;
    std::wstring StatusText() const;
    std::wstring ZoomBoxText() const;

    // A picture of that size in the folder, opened as a dropped file is.
    void OpenPicture(const std::string& name, int width, int height, int components = 3,
                     int bits = 8);
    // Gives the opened picture a result that is in no file, as a tool would.
    void MakeResult(uint8_t level);

    std::wstring Wide(const std::string& name) const; // path of a file in the folder
};

std::wstring WideOf(const std::string& utf8);

// Handles everything that is waiting.
void Pump();

// Makes these files in that order the series of the document, as if a tool had written them.
void GiveSeries(std::vector<std::wstring> files);

LRESULT Command(int id); // as a button or the menu sends it
void SetClientSize(int width, int height);
void Drop(const std::vector<std::wstring>& paths);

// Mouse over the frame, in client coordinates.
LRESULT Mouse(UINT message, int x, int y, WPARAM keys = 0);
void Wheel(int delta, int x, int y);

// 1 or 0 for each of the nine commands that change, as the toolbar shows them: Open, Multi Image,
// Save As, Single Light, Daylight Up, Daylight Down, Smart Contrast, Tone Mapping, and whether the
// zoom box is on.
std::string Enabled();

// Colour of a pixel of the view, blue, green and red, counted from the view area's corner.
Bytes ViewPixel(int x, int y);
Bytes ViewCentre();

// A step for RunModal that expects a message box and presses one of its buttons.
std::function<void(HWND)> Box(TextId text, TextId caption, int button = IDOK);

// Plays the user in a file dialog: goes to the folder, types the name, presses OK.
void ChooseFile(HWND dialog, const std::wstring& inFolder, const std::wstring& name);

// Runs the command menu and closes it again; `read` gets its root while it is open.
void RunMenu(const std::function<void(HMENU)>& read);
