// The MATLBT window: its record, its painting read back from a memory surface, its mouse and
// menu commands, its document line and its file, and what it leaves behind.
#include <windows.h>

#include <cstdio>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "controls/page_setup.h"
#include "controls/value_controls.h"
#include "documents/settings.h"
#include "materials/material_button.h"
#include "materials/material_button_win32.h"
#include "materials/material_file.h"
#include "tests/support/value_dialog.h"

namespace {

HWND W(WindowHandle handle) {
  return reinterpret_cast<HWND>(handle);
}

// Change notes that reach the dialog: the last kind and button, and how many.
struct ChangeNotes {
  WPARAM kind = 0;
  LPARAM button = 0;
  int count = 0;
} g_notes;
WNDPROC g_dialogProc = nullptr;

LRESULT CALLBACK RecordingDialogProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == kMessageMaterialChanged) g_notes = {wParam, lParam, g_notes.count + 1};
  return CallWindowProcA(g_dialogProc, window, message, wParam, lParam);
}

int ChooseTeal(WindowHandle, uint32_t* colour, const uint8_t*) {
  *colour = 0x808000;
  return 1;
}

// The client area as painted, held in a memory surface.
struct Painted {
  HDC dc;
  HBITMAP bitmap;
  HGDIOBJ old;
  explicit Painted(HWND button) {
    HDC screen = GetDC(nullptr);
    dc = CreateCompatibleDC(screen);
    bitmap = CreateCompatibleBitmap(screen, 80, 30);
    ReleaseDC(nullptr, screen);
    old = SelectObject(dc, bitmap);
    SendMessageA(button, WM_PRINTCLIENT, reinterpret_cast<WPARAM>(dc), PRF_CLIENT);
  }
  ~Painted() {
    SelectObject(dc, old);
    DeleteObject(bitmap);
    DeleteDC(dc);
  }
  COLORREF At(int x, int y) const { return GetPixel(dc, x, y); }
  // How many pixels of the preview (2, 2)-(62, 28) have `colour`.
  int Count(COLORREF colour) const {
    int n = 0;
    for (int y = 2; y < 28; ++y)
      for (int x = 2; x < 62; ++x) n += At(x, y) == colour;
    return n;
  }
};

// How many more GDI objects the process can make: brushes are made until none is left, then
// deleted again. Under Wine a process has room for about 65,000.
int GdiRoom() {
  std::vector<HBRUSH> made;
  for (HBRUSH b; made.size() < 100000 && (b = CreateSolidBrush(RGB(1, 2, 3)));) made.push_back(b);
  for (HBRUSH b : made) DeleteObject(b);
  return static_cast<int>(made.size());
}

uint32_t Field(HWND button, uint32_t Material::*field) {
  Material* m = MaterialForButton(reinterpret_cast<WindowHandle>(button));
  if (!m) return 0xDEADBEEF;
  const uint32_t value = m->*field;
  MovableUnlock(ButtonMaterialHandle(reinterpret_cast<WindowHandle>(button)));
  return value;
}

class MaterialButtonWin32 : public testing::Test {
 protected:
  void SetUp() override {
    SetSettingsFolder(MakeTempFolder("gm5-material-button").c_str());
    live_ = MovableLiveCount();
    InstallControlKinds();
    dialog_ = DialogCreate();
    g_dialogProc = reinterpret_cast<WNDPROC>(SetWindowLongPtrA(
        W(dialog_), GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(RecordingDialogProc)));
    g_notes = {};
  }
  void TearDown() override {
    DialogDestroy(dialog_);
    SetColourChooser(nullptr);
    EXPECT_EQ(MovableLiveCount(), live_) << "every record and preview is freed";
    SetSettingsFolder("");
  }
  HWND Button(int32_t id, uint32_t colour) {
    HWND button = W(DialogAddControl(dialog_, id, kControlMaterialButton, "Fill"));
    SetWindowPos(button, nullptr, 0, 0, 80, 30, SWP_NOZORDER);
    SendMessageA(button, kMessageMaterialCreate, 0, colour);
    return button;
  }
  long live_ = 0;
  WindowHandle dialog_ = nullptr;
};

}  // namespace

TEST_F(MaterialButtonWin32, PaintsPreviewArrowAndCaption) {
  HWND button = Button(140, 0x0000FF);
  {
    const Painted red(button);
    EXPECT_EQ(red.At(3, 3), RGB(255, 0, 0));
    EXPECT_GT(red.Count(RGB(255, 255, 255)), 10) << "white caption on a dark preview";
    EXPECT_EQ(red.Count(RGB(0, 0, 0)), 0);
    EXPECT_EQ(red.At(80 - 9, 15), GetSysColor(COLOR_BTNTEXT)) << "the arrow";
    EXPECT_EQ(red.At(80 - 4, 4), GetSysColor(COLOR_BTNFACE)) << "beside the arrow";
  }
  SendMessageA(button, kMessageMaterialCreate, 0, 0xE0E0E0);
  {
    const Painted light(button);
    EXPECT_GT(light.Count(RGB(0, 0, 0)), 10) << "black caption on a light preview";
    EXPECT_EQ(light.Count(RGB(255, 255, 255)), 0);
  }
  EnableWindow(button, FALSE);
  EXPECT_EQ(Painted(button).At(3, 3), GetSysColor(COLOR_BTNFACE)) << "disabled: no preview";
}

TEST_F(MaterialButtonWin32, MenuKindsAndTheColourEditorNotifyTheParent) {
  HWND button = Button(141, 0x0000FF);
  SendMessageA(button, WM_COMMAND, kMaterialKindCommand + kMaterialGradient, 0);
  EXPECT_EQ(g_notes.count, 1);
  EXPECT_EQ(g_notes.kind, static_cast<WPARAM>(kMaterialGradient));
  EXPECT_EQ(g_notes.button, reinterpret_cast<LPARAM>(button));
  EXPECT_NE(Painted(button).At(3, 3), RGB(255, 0, 0)) << "the gradient shows";
  EXPECT_EQ(Field(button, &Material::averageColour), 0x0000FFu) << "mean kept until an edit";

  SendMessageA(button, WM_COMMAND, kMaterialKindCommand + kMaterialSimple, 0);
  SetColourChooser(ChooseTeal);
  // A press and release on the body opens the kind's editor; the press shows sunken meanwhile.
  SendMessageA(button, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(10, 10));
  EXPECT_EQ(Field(button, &Material::pressState), kMaterialBodyPressed);
  SendMessageA(button, WM_LBUTTONUP, 0, MAKELPARAM(10, 10));
  EXPECT_EQ(Field(button, &Material::pressState), 0u);
  EXPECT_EQ(Field(button, &Material::solidColour), 0x808000u);
  EXPECT_EQ(Painted(button).At(3, 3), RGB(0, 128, 128));
  EXPECT_EQ(g_notes.count, 3);
}

TEST_F(MaterialButtonWin32, DocumentLineAndFileCarryTheRecord) {
  HWND button = Button(142, 0x123456);
  std::FILE* file = std::tmpfile();
  ASSERT_NE(file, nullptr);
  ASSERT_EQ(DialogWriteLine(reinterpret_cast<WindowHandle>(button), file), 1);
  std::string line(12 + 2 * kMaterialSize, '\0');
  std::rewind(file);
  line.resize(std::fread(line.data(), 1, line.size(), file));
  std::fclose(file);
  EXPECT_EQ(line.rfind("MATLBT142=", 0), 0u) << line.substr(0, 40);

  SendMessageA(button, kMessageMaterialCreate, 0, 0x00FF00);
  EXPECT_EQ(DialogReadLine(reinterpret_cast<WindowHandle>(button), line.c_str()), 1);
  EXPECT_EQ(Field(button, &Material::solidColour), 0x123456u);
  EXPECT_EQ(Painted(button).At(3, 3), RGB(0x56, 0x34, 0x12)) << "preview made from the line";

  MovableHandle copy =
      reinterpret_cast<MovableHandle>(SendMessageA(button, kMessageMaterialDuplicate, 0, 0));
  ASSERT_NE(copy, nullptr);
  FreeButtonMaterial(copy);

  // Destruction writes the file; the next button of that id starts from it unless Shift is held.
  DestroyWindow(button);
  EXPECT_EQ(Field(Button(142, 0xFFFFFF), &Material::solidColour), 0x123456u);
  BYTE keys[256];
  GetKeyboardState(keys);
  keys[VK_SHIFT] |= 0x80;
  SetKeyboardState(keys);
  EXPECT_EQ(Field(Button(142, 0xFFFFFF), &Material::solidColour), 0xFFFFFFu);
  keys[VK_SHIFT] &= 0x7F;
  SetKeyboardState(keys);
}

// Previews made, painted and thrown away, and whole buttons made and destroyed, leave the room for
// GDI objects as it was.
TEST_F(MaterialButtonWin32, LeavesNoGdiObjectsBehind) {
  HWND button = Button(143, 0x0000FF);
  const Painted surface(button);  // the first paint also sets up what GDI keeps for good
  DestroyWindow(Button(144, 0x00FF00));
  const int room = GdiRoom();
  for (int i = 0; i < 20; ++i) {
    SendMessageA(button, WM_COMMAND, kMaterialKindCommand + i % 2, 0);
    SendMessageA(button, WM_PRINTCLIENT, reinterpret_cast<WPARAM>(surface.dc), PRF_CLIENT);
    DestroyWindow(Button(144, 0x00FF00));
  }
  EXPECT_EQ(GdiRoom(), room);
}
