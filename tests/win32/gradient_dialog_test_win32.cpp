// The Gradient dialog opened from a material button's Gradient kind on real windows: a marker
// added by a double click on the fountain button and dragged along it, the preview drawn again
// after each, OK carrying both into the material; then the fountain button's FOUNTB line through
// a document, and a screenshot of the dialog for looking at in build/windows/screenshots.
#include <windows.h>

#include <cstdio>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "controls/page_setup.h"
#include "controls/value_controls.h"
#include "documents/effect_document.h"
#include "documents/settings.h"
#include "materials/data_folder.h"
#include "host/bmp_file.h"
#include "host/png_file.h"
#include "materials/fountain_button.h"
#include "materials/fountain_library.h"
#include "materials/fountain_markers.h"
#include "materials/gradient_dialog.h"
#include "materials/gradient_dialog_win32.h"
#include "materials/material_button.h"
#include "resources/resource_ids.h"
#include "tests/support/value_dialog.h"
#include "tests/win32/win32_test_support.h"

namespace {

constexpr uint32_t kTeal = 0x808000;

int ChooseTeal(WindowHandle, uint32_t* colour, const uint8_t*) {
  *colour = kTeal;
  return 1;
}

// The pixels of a window as they stand on the screen, in rows of 0x00RRGGBB.
std::vector<uint32_t> ScreenPixels(HWND window, int* width = nullptr, int* height = nullptr) {
  RECT r;
  GetWindowRect(window, &r);
  const int w = r.right - r.left, h = r.bottom - r.top;
  if (width) *width = w;
  if (height) *height = h;
  std::vector<uint32_t> pixels(static_cast<size_t>(w) * h);
  HDC source = GetWindowDC(window);
  HDC memory = CreateCompatibleDC(source);
  BITMAPINFO info{};
  info.bmiHeader = {sizeof info.bmiHeader, w, -h, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
  void* bits = nullptr;
  HBITMAP bitmap = CreateDIBSection(source, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  if (bitmap && bits) {
    HGDIOBJ old = SelectObject(memory, bitmap);
    BitBlt(memory, 0, 0, w, h, source, 0, 0, SRCCOPY);
    GdiFlush();
    std::memcpy(pixels.data(), bits, pixels.size() * 4);
    SelectObject(memory, old);
    DeleteObject(bitmap);
  }
  DeleteDC(memory);
  ReleaseDC(window, source);
  for (uint32_t& p : pixels) p &= 0xFFFFFF;
  return pixels;
}

void SaveScreenshot(HWND window, const std::string& path) {
  int w = 0, h = 0;
  const std::vector<uint32_t> pixels = ScreenPixels(window, &w, &h);
  std::vector<uint8_t> rgb;
  for (uint32_t p : pixels) rgb.insert(rgb.end(), {uint8_t(p >> 16), uint8_t(p >> 8), uint8_t(p)});
  WriteWholeFile(path.c_str(), EncodeRgbPng(rgb.data(), rgb.size(), w, h));
}

FountainGradient FountainOf(HWND button) {
  FountainGradient g;
  std::memset(&g, 0, sizeof g);
  ButtonFountain(reinterpret_cast<WindowHandle>(button), &g);
  return g;
}

int32_t IndexOfColour(const FountainGradient& g, uint32_t colour) {
  for (uint32_t i = 0; i < g.markerCount; ++i)
    if ((g.markers[i] & 0xFFFFFF) == colour) return static_cast<int32_t>(i);
  return -1;
}

int32_t StripWidth(HWND button) {
  RECT r;
  GetClientRect(button, &r);
  return r.right - 2 * kStripInsetX;
}

// Steps run one per tick while a modal dialog runs; a step answers false to be tried again.
std::vector<std::function<bool()>> g_steps;
size_t g_nextStep = 0;

void CALLBACK RunSteps(HWND, UINT, UINT_PTR, DWORD) {
  if (g_nextStep < g_steps.size() && g_steps[g_nextStep]()) ++g_nextStep;
}

// Runs `modal` while the steps drive it; answers what `modal` answered.
template <typename Modal>
auto DriveModal(std::vector<std::function<bool()>> steps, Modal modal) {
  g_steps = std::move(steps);
  g_nextStep = 0;
  const UINT_PTR timer = SetTimer(nullptr, 0, 100, RunSteps);
  auto result = modal();
  KillTimer(nullptr, timer);
  return result;
}

// A step that acts on the visible dialog of that caption once it is there.
std::function<bool()> InDialog(const char* caption, std::function<void(HWND)> act) {
  return [caption, act]() {
    HWND found = FindWindowA("#32770", caption);
    if (!found || !IsWindowVisible(found)) return false;
    RedrawWindow(found, nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
    act(found);
    return true;
  };
}

void Press(HWND dialog, int id) {
  PostMessageA(dialog, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), 0);
}

std::string ShotsFolder() {
  const std::string bin = BuildPath(GM5_PLUGIN_PATH);
  const std::string shots =
      bin.substr(0, bin.find_last_of('\\', bin.find_last_of('\\') - 1)) + "\\screenshots";
  CreateDirectoryA(shots.c_str(), nullptr);
  return shots;
}

Material MaterialOf(HWND button) {
  Material copy;
  std::memset(&copy, 0, sizeof copy);
  if (Material* m = MaterialForButton(reinterpret_cast<WindowHandle>(button))) {
    copy = *m;
    MovableUnlock(ButtonMaterialHandle(reinterpret_cast<WindowHandle>(button)));
  }
  return copy;
}

}  // namespace

TEST(GradientDialog, MarkerAddedAndDraggedFromMaterialButtonThenThroughADocument) {
  ASSERT_TRUE(DisplayAvailable()) << "run under xvfb-run";
  const std::string folder = MakeTempFolder("gm5-gradient-dialog");
  SetSettingsFolder(folder.c_str());
  const long live = MovableLiveCount();
  InstallControlKinds();
  SetColourChooser(ChooseTeal);
  WindowHandle dialog = DialogCreate();
  HWND material = reinterpret_cast<HWND>(
      DialogAddControl(dialog, 140, kControlMaterialButton, "Fill"));
  SetWindowPos(material, nullptr, 0, 0, 80, 30, SWP_NOZORDER);
  SendMessageA(material, kMessageMaterialCreate, 0, 0x0000FF);
  SendMessageA(material, WM_COMMAND, kMaterialKindCommand + kMaterialGradient, 0);
  const Material before = MaterialOf(material);
  ASSERT_EQ(before.fountain.markerCount, 7u);

  // Multi-colour; a double click on the bar between the markers at 128 and 160 adds one there;
  // the new marker is pressed, dragged 30 pixels right and let go; then OK. The preview is read
  // before and after each.
  std::vector<uint32_t> previews[3];
  FountainGradient added{}, dragged{};
  int32_t addedAt = -1, expectedDrop = -1;
  auto strip = [](HWND d) { return GetDlgItem(d, kIdGradientFountain); };
  auto preview = [](HWND d) { return ScreenPixels(GetDlgItem(d, kIdGradientPreview)); };
  DriveModal(
      {InDialog("Gradient",
                [&](HWND d) {
                  SendMessageA(GetDlgItem(d, kIdGradientMultiColour), BM_CLICK, 0, 0);
                }),
       InDialog("Gradient",
                [&](HWND d) {
                  previews[0] = preview(d);
                  const int x = kStripInsetX + StripWidth(strip(d)) * 144 / 255;
                  addedAt = ClickMarkerPosition(x, kStripInsetX, StripWidth(strip(d)));
                  SendMessageA(strip(d), WM_LBUTTONDBLCLK, MK_LBUTTON, MAKELPARAM(x, 6));
                }),
       InDialog("Gradient",
                [&](HWND d) {
                  previews[1] = preview(d);
                  added = FountainOf(strip(d));
                  const int32_t i = IndexOfColour(added, kTeal);
                  const int x = kStripInsetX + MarkerOffset(&added, i < 0 ? 0 : i,
                                                            StripWidth(strip(d)));
                  expectedDrop = DragEndPosition(x, 30, kStripInsetX, StripWidth(strip(d)));
                  SendMessageA(strip(d), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(x, 6));
                  SendMessageA(strip(d), WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(x + 20, 6));
                  SendMessageA(strip(d), WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(x + 30, 6));
                  SendMessageA(strip(d), WM_LBUTTONUP, 0, MAKELPARAM(x + 30, 6));
                }),
       InDialog("Gradient",
                [&](HWND d) {
                  previews[2] = preview(d);
                  dragged = FountainOf(strip(d));
                  SaveScreenshot(d, ShotsFolder() + "\\gradient-dialog.png");
                  Press(d, IDOK);
                })},
      [&] { return SendMessageA(material, WM_COMMAND, kMaterialEditCommand, 0); });
  ASSERT_EQ(g_nextStep, 4u) << "the dialog was driven to OK";

  EXPECT_EQ(added.markerCount, 8u);
  ASSERT_GE(IndexOfColour(added, kTeal), 0);
  EXPECT_EQ(static_cast<int32_t>(added.markers[IndexOfColour(added, kTeal)] >> 24), addedAt);
  EXPECT_NE(previews[1], previews[0]) << "the preview shows the new marker";
  EXPECT_EQ(dragged.markerCount, 8u);
  ASSERT_GE(IndexOfColour(dragged, kTeal), 0);
  const int32_t droppedAt =
      static_cast<int32_t>(dragged.markers[IndexOfColour(dragged, kTeal)] >> 24);
  EXPECT_GT(droppedAt, addedAt);
  EXPECT_EQ(droppedAt, expectedDrop);
  EXPECT_NE(previews[2], previews[1]) << "the preview follows the drag";

  // OK carried the description and the markers into the material, whose preview changed.
  const Material after = MaterialOf(material);
  EXPECT_EQ(after.gradient.twoColour, 0);
  EXPECT_EQ(std::memcmp(after.fountain.markers, dragged.markers, sizeof dragged.markers), 0);
  EXPECT_NE(after.averageColour, before.averageColour);

  // A fountain button's FOUNTB line goes into a document and back.
  HWND fountain = reinterpret_cast<HWND>(
      DialogAddControl(dialog, 336, kControlFountainButton, ""));
  SetWindowPos(fountain, nullptr, 0, 40, 200, 40, SWP_NOZORDER);
  SendMessageA(fountain, kMessageFountainCreate, 0, reinterpret_cast<LPARAM>(&after.fountain));
  const std::string document = folder + "gradient.gm5";
  ASSERT_EQ(SaveDocument(dialog, document.c_str()), 1);
  SendMessageA(fountain, kMessageFountainCreate, 0, 0);
  EXPECT_EQ(FountainOf(fountain).markerCount, 7u);
  LoadDocument(dialog, document.c_str());
  const FountainGradient loaded = FountainOf(fountain);
  EXPECT_EQ(loaded.markerCount, 8u);
  EXPECT_EQ(std::memcmp(loaded.markers, after.fountain.markers, sizeof loaded.markers), 0);
  std::FILE* file = std::fopen(document.c_str(), "rb");
  ASSERT_NE(file, nullptr);
  std::string text(65536, '\0');
  text.resize(std::fread(text.data(), 1, text.size(), file));
  std::fclose(file);
  EXPECT_NE(text.find("\nFOUNTB336=434F424C464F554E"), std::string::npos);

  DialogDestroy(dialog);
  SetColourChooser(nullptr);
  EXPECT_EQ(MovableLiveCount(), live) << "records, strips and previews are all freed";
  SetSettingsFolder("");
}

// The Marker Position dialog moves a marker without a test for collision and sorts; the library
// dialog deletes a row and takes the selected entry on OK, rewriting the file; a library that
// can't be loaded says so and changes nothing.
TEST(GradientDialog, MarkerPositionAndLibraryDialogs) {
  ASSERT_TRUE(DisplayAvailable()) << "run under xvfb-run";
  SetSettingsFolder(MakeTempFolder("gm5-gradient-library").c_str());
  const long live = MovableLiveCount();
  InstallControlKinds();
  WindowHandle dialog = DialogCreate();
  HWND button =
      reinterpret_cast<HWND>(DialogAddControl(dialog, 120, kControlFountainButton, ""));
  SetWindowPos(button, nullptr, 0, 0, 200, 40, SWP_NOZORDER);
  SendMessageA(button, kMessageFountainCreate, 0, 0);

  DriveModal({InDialog("Marker Position",
                       [&](HWND d) {
                         SetDlgItemTextA(d, kIdMarkerPosition, "250");
                         Press(d, IDOK);
                       })},
             [&] { return SendMessageA(button, kMessageFountainAdjustMarker, 0, 0); });
  FountainGradient g = FountainOf(button);
  ASSERT_EQ(g.markerCount, 7u);
  EXPECT_EQ(g.markers[0] >> 24, 64u);
  EXPECT_EQ(g.markers[6], 0xFAFF0000u) << "the first marker, now at 250, sorted last";

  char path[kDataPathSize];
  ASSERT_TRUE(LibraryFilePath(path, sizeof path));
  for (uint32_t colour : {0x0000FFu, 0x00FF00u, 0xFF0000u}) {
    FountainGradient entry = g;
    entry.leftColour = colour;
    entry.markerCount = 1;
    ASSERT_TRUE(AddToLibraryFile(path, &entry, 1));
  }
  const std::string shot = ShotsFolder() + "\\gradient-library.png";
  FountainGradient chosen = g;
  std::strcpy(chosen.name, "kept");
  const int changed = DriveModal(
      {InDialog("Gradient Library",
                [&](HWND d) {
                  SendDlgItemMessageA(d, kIdLibraryList, LB_SETCURSEL, 1, 0);
                  Press(d, kIdLibraryDelete);
                }),
       InDialog("Gradient Library",
                [&](HWND d) {
                  SaveScreenshot(d, shot);
                  EXPECT_EQ(SendDlgItemMessageA(d, kIdLibraryList, LB_GETCOUNT, 0, 0), 2);
                  SendDlgItemMessageA(d, kIdLibraryList, LB_SETCURSEL, 1, 0);
                  Press(d, IDOK);
                })},
      [&] { return RunGradientLibraryDialog(dialog, &chosen); });
  EXPECT_EQ(changed, 1);
  EXPECT_EQ(chosen.leftColour, 0xFF0000u);
  EXPECT_EQ(chosen.markerCount, 1u);
  EXPECT_STREQ(chosen.name, "kept");
  std::vector<uint32_t> left;
  ReadLibraryFile(
      path,
      [](void* list, const FountainGradient* e) {
        static_cast<std::vector<uint32_t>*>(list)->push_back(e->leftColour);
        return 1;
      },
      &left);
  EXPECT_EQ(left, std::vector<uint32_t>({0x0000FFu, 0xFF0000u}));

  std::remove(path);
  std::string shown;
  const FountainGradient unchanged = chosen;
  EXPECT_EQ(DriveModal({[&]() {
                          HWND box = FindWindowA("#32770", nullptr);
                          if (!box || !GetDlgItem(box, IDC_MESSAGE_TEXT)) return false;
                          char text[256] = "";
                          GetDlgItemTextA(box, IDC_MESSAGE_TEXT, text, sizeof text);
                          shown = text;
                          Press(box, IDOK);
                          return true;
                        }},
                       [&] { return RunGradientLibraryDialog(dialog, &chosen); }),
            0);
  EXPECT_EQ(shown, "There has been an error loading the fountain library.");
  EXPECT_EQ(std::memcmp(&chosen, &unchanged, sizeof chosen), 0);

  DialogDestroy(dialog);
  EXPECT_EQ(MovableLiveCount(), live);
  SetSettingsFolder("");
}

// The mouse on the strip: a right click on an end or a double click on a marker recolours it, a
// right click with Shift deletes a marker at once, and a looped button's right end can't be
// recoloured by a double click.
TEST(GradientDialog, MouseRecoloursAndDeletesOnTheStrip) {
  ASSERT_TRUE(DisplayAvailable()) << "run under xvfb-run";
  const long live = MovableLiveCount();
  InstallControlKinds();
  SetColourChooser(ChooseTeal);
  WindowHandle dialog = DialogCreate();
  HWND button = reinterpret_cast<HWND>(
      DialogAddControl(dialog, 120, kControlFountainButton, "FountainButtonLooped"));
  SetWindowPos(button, nullptr, 0, 0, 276, 40, SWP_NOZORDER);
  SendMessageA(button, kMessageFountainCreate, 0, 0);
  ASSERT_EQ(FountainOf(button).flags, kFountainLooped);
  const int32_t right = 276 - kStripInsetX;
  auto click = [button](UINT message, int x) {
    SendMessageA(button, message, message == WM_RBUTTONUP ? 0 : MK_LBUTTON, MAKELPARAM(x, 6));
  };

  click(WM_RBUTTONUP, kStripInsetX);
  EXPECT_EQ(FountainOf(button).leftColour, kTeal);
  click(WM_LBUTTONDBLCLK, right);
  EXPECT_EQ(FountainOf(button).rightColour, 0xFFFFFFFFu) << "looped: the right end follows";
  click(WM_RBUTTONUP, right);
  EXPECT_EQ(FountainOf(button).rightColour, kTeal);
  const FountainGradient before = FountainOf(button);
  const int x2 = kStripInsetX + MarkerOffset(&before, 2, right - kStripInsetX);
  click(WM_LBUTTONDBLCLK, x2);
  EXPECT_EQ(FountainOf(button).markers[2], (before.markers[2] & 0xFF000000u) | kTeal);

  BYTE keys[256];
  GetKeyboardState(keys);
  keys[VK_SHIFT] |= 0x80;
  SetKeyboardState(keys);
  click(WM_RBUTTONUP, x2);
  keys[VK_SHIFT] &= 0x7F;
  SetKeyboardState(keys);
  const FountainGradient after = FountainOf(button);
  EXPECT_EQ(after.markerCount, 6u);
  EXPECT_EQ(after.markers[2], before.markers[3]) << "the next marker moved up";

  DialogDestroy(dialog);
  SetColourChooser(nullptr);
  EXPECT_EQ(MovableLiveCount(), live);
}
