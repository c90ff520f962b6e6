// The Windows side of the value controls: kinds told by their class procedures, the pickers' and
// colour buttons' painting read back from the screen, and a document for the native comparison.
#include <windows.h>

#include <commctrl.h>

#include <fstream>
#include <utility>
#include <vector>
#include <string>

#include <gtest/gtest.h>

#include "controls/page_setup.h"
#include "controls/direction_picker.h"
#include "controls/value_controls.h"
#include "documents/effect_document.h"
#include "documents/settings.h"
#include "platform/win32/dialog_win32.h"
#include "tests/support/value_dialog.h"

namespace {

HWND W(WindowHandle handle) {
  return reinterpret_cast<HWND>(handle);
}

// A dialog on the screen, so that what its controls paint can be read back.
WindowHandle ScreenDialog() {
  InstallControlKinds();
  WindowHandle dialog = DialogCreate();
  SetWindowPos(W(dialog), HWND_TOPMOST, 0, 0, 300, 200, SWP_SHOWWINDOW);
  return dialog;
}

COLORREF PixelOf(WindowHandle control, int x, int y) {
  HDC dc = GetDC(W(control));
  const COLORREF colour = GetPixel(dc, x, y);
  ReleaseDC(W(control), dc);
  return colour;
}

// The range and position messages an updown receives, in order.
std::vector<std::pair<UINT, LPARAM>> g_updownMessages;
WNDPROC g_updownBase = nullptr;

LRESULT CALLBACK RecordUpDown(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message >= WM_USER + 100 && message <= WM_USER + 114)
    g_updownMessages.push_back({message, lParam});
  return CallWindowProcA(g_updownBase, window, message, wParam, lParam);
}

}  // namespace

// An updown gets its range and default from its text with the 16-bit messages, max in the low
// word and min in the high; a text that doesn't scan as three numbers sends nothing.
TEST(ValueControlsWin32, UpDownRangeUsesTheSixteenBitMessages) {
  WindowHandle dialog = ScreenDialog();
  HWND updown = W(DialogAddControl(dialog, 10700, kControlUpDown, ""));
  g_updownBase = reinterpret_cast<WNDPROC>(
      SetWindowLongPtrA(updown, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(RecordUpDown)));
  const struct {
    const char* text;
    int min, max, position;
  } kCases[] = {{"-90,90,5", -90, 90, 5}, {"4,400,24", 4, 400, 24}, {"1,10000,10", 1, 10000, 10}};
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.text);
    g_updownMessages.clear();
    SetUpDownRange(updown, c.text);
    ASSERT_EQ(g_updownMessages.size(), 2u);
    EXPECT_EQ(g_updownMessages[0].first, static_cast<UINT>(UDM_SETRANGE));
    EXPECT_EQ(g_updownMessages[0].second, MAKELPARAM(c.max, c.min));
    EXPECT_EQ(g_updownMessages[1].first, static_cast<UINT>(UDM_SETPOS));
    EXPECT_EQ(LOWORD(g_updownMessages[1].second), c.position);
    // The control holds what was sent.
    const LRESULT range = SendMessageA(updown, UDM_GETRANGE, 0, 0);
    EXPECT_EQ(static_cast<short>(LOWORD(range)), c.max);
    EXPECT_EQ(static_cast<short>(HIWORD(range)), c.min);
  }
  g_updownMessages.clear();
  SetUpDownRange(updown, "1,2");
  EXPECT_TRUE(g_updownMessages.empty());
  DialogDestroy(dialog);
}

// A picker paints its selected cell pressed and the others raised; a colour button paints its
// colour, or the button face when disabled.
TEST(ValueControlsWin32, PickersAndColourButtonsPaintTheirValues) {
  WindowHandle dialog = ScreenDialog();
  WindowHandle picker = DialogAddControl(dialog, 120, kControlShadowPicker, "3");
  WindowHandle button = DialogAddControl(dialog, 106, kControlColourButton, "255");
  SetWindowPos(W(button), nullptr, 200, 0, 40, 40, SWP_NOZORDER);  // clear of the picker
  DialogPickerSetUp(picker, 3, nullptr);
  RedrawWindow(W(dialog), nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
  EXPECT_EQ(PixelOf(picker, 51, 26), GetSysColor(COLOR_BTNSHADOW));   // cell 3, selected
  EXPECT_EQ(PixelOf(picker, 50, 25), GetSysColor(COLOR_3DDKSHADOW));  // its frame
  EXPECT_EQ(PixelOf(picker, 64, 37), RGB(0, 0, 0));                   // its arrow's shaft
  EXPECT_EQ(PixelOf(picker, 20, 3), GetSysColor(COLOR_BTNFACE));      // cell 0, raised
  EXPECT_EQ(PixelOf(button, 10, 10), RGB(255, 0, 0));
  DialogPickerClick(picker, 5, 5);
  DialogEnableItem(button, 0);
  RedrawWindow(W(dialog), nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
  EXPECT_EQ(PixelOf(picker, 51, 26), GetSysColor(COLOR_BTNFACE));
  EXPECT_EQ(PixelOf(picker, 20, 3), GetSysColor(COLOR_BTNSHADOW));
  EXPECT_EQ(PixelOf(button, 10, 10), GetSysColor(COLOR_BTNFACE));
  DialogDestroy(dialog);
}

// Writes a changed dialog's document and its state for the native build to load and compare.
TEST(ValueControlsWin32, WritesADocumentForTheNativeBuild) {
  ResetSettings();
  CreateDirectoryA("parity", nullptr);
  WindowHandle dialog = CreateValueDialog();
  ASSERT_NE(dialog, nullptr);
  AddTestFonts(dialog);
  ChangeEveryControl(dialog, 5);
  ASSERT_EQ(SaveDocument(dialog, "parity/document.gm5"), 1);
  std::ofstream state("parity/document-state.txt");
  for (const std::string& line : DialogState(dialog)) state << line << "\n";
  DialogDestroy(dialog);
  ResetSettings();
}
