// Effect pages on real windows: the page dialog resources against their tables, and EffectInit's
// twins in a dialog, shown page by page with ShowEffectPage.
#include <windows.h>
#include <commctrl.h>

#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <vector>

#include "controls/page_setup.h"
#include "controls/direction_picker.h"
#include "controls/page_layout.h"
#include "controls/value_controls.h"
#include "documents/settings.h"
#include "platform/surface.h"
#include "shell/effect_pages.h"
#include "shell/effect_table.h"
#include "tests/support/effect_page_checks.h"
#include "tests/support/value_dialog.h"
#include "tests/win32/win32_test_support.h"

namespace {

INT_PTR CALLBACK QuietPageProc(HWND, UINT, WPARAM, LPARAM) {
  return FALSE;
}

// The kind a page id stands for in the page table: a control, its label or its updown.
ControlKind KindOfPageId(const PageTable& page, int32_t id) {
  for (int32_t i = 0; i < page.count; ++i) {
    const PageControl& c = page.controls[i];
    if (c.id == id) return c.kind;
    if (HasLabel(c) && c.id + 1 == id) return kControlLabel;
    if (HasUpDown(c) && c.id + kUpDownIdOffset == id) return kControlUpDown;
  }
  return kControlKindCount;
}

RECT ClientRect(HWND child) {
  RECT r;
  GetWindowRect(child, &r);
  MapWindowPoints(nullptr, GetParent(child), reinterpret_cast<POINT*>(&r), 2);
  return r;
}

// The page's own child windows in creation order.
std::vector<HWND> Children(HWND page) {
  std::vector<HWND> windows;
  EnumChildWindows(
      page,
      [](HWND child, LPARAM list) {
        reinterpret_cast<std::vector<HWND>*>(list)->push_back(child);
        return TRUE;
      },
      reinterpret_cast<LPARAM>(&windows));
  // A control's own child windows (the animation picker's button) are part of the control.
  std::erase_if(windows, [page](HWND w) { return GetParent(w) != page; });
  return windows;
}

}  // namespace

// Each page resource holds exactly its row's ids, each with the class and style of its kind, all
// inside the page area and none overlapping another. The plug-in carries the same dialogs.
TEST(EffectPage, ResourcesMatchTheirTables) {
  ASSERT_TRUE(DisplayAvailable()) << "run under xvfb-run";
  HMODULE plugin = LoadLibraryExA(GM5_PLUGIN_PATH, nullptr, LOAD_LIBRARY_AS_DATAFILE);
  ASSERT_NE(plugin, nullptr);
  InstallControlKinds();
  WindowHandle host = DialogCreate();  // pages are child windows
  for (int32_t row = 0; row < kEffectCount; ++row) {
    const PageTable& page = kPageTables[EffectStyle[row]];
    const int32_t resource = EffectPageId(row);
    EXPECT_NE(FindResourceA(plugin, MAKEINTRESOURCEA(resource), MAKEINTRESOURCEA(5)), nullptr)
        << resource;
    HWND dialog = CreateDialogParamA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(resource),
                                     reinterpret_cast<HWND>(host), QuietPageProc, 0);
    ASSERT_NE(dialog, nullptr) << resource;
    RECT area = {kPageAreaLeft, kPageAreaTop, kPageAreaRight, kPageAreaBottom};
    MapDialogRect(dialog, &area);
    const std::vector<HWND> children = Children(dialog);
    std::set<int32_t> ids, listed;
    for (const int32_t* id = EffectTable[row].controls; *id; ++id) listed.insert(*id);
    for (size_t i = 0; i < children.size(); ++i) {
      HWND child = children[i];
      const int32_t id = GetDlgCtrlID(child);
      ids.insert(id);
      const ControlKind kind = KindOfPageId(page, id);
      ASSERT_NE(kind, kControlKindCount) << "page " << resource << " id " << id;
      char windowClass[64];
      GetClassNameA(child, windowClass, sizeof windowClass);
      const DWORD style = static_cast<DWORD>(GetWindowLongA(child, GWL_STYLE));
      EXPECT_EQ(lstrcmpiA(windowClass, PageWindowClass(kind)), 0) << id << " " << windowClass;
      // An edit's border becomes a client edge and a combo box's scroll bar its list's.
      const DWORD wanted = PageWindowStyle(kind) & ~static_cast<DWORD>(WS_BORDER | WS_VSCROLL);
      EXPECT_EQ(style & wanted, wanted) << id;
      const RECT r = ClientRect(child);
      EXPECT_TRUE(r.left >= area.left && r.top >= area.top && r.right <= area.right &&
                  r.bottom <= area.bottom)
          << "page " << resource << " id " << id << " outside the page area";
      if (FindPickerShape(kind)) {
        EXPECT_TRUE(r.right - r.left >= 75 && r.bottom - r.top >= 75) << id;
      }
      for (size_t j = 0; j < i; ++j) {
        RECT both;
        const RECT other = ClientRect(children[j]);
        EXPECT_FALSE(IntersectRect(&both, &r, &other))
            << "page " << resource << ": " << id << " overlaps " << GetDlgCtrlID(children[j]);
      }
    }
    EXPECT_EQ(ids, listed) << resource;
    DestroyWindow(dialog);
  }
  DialogDestroy(host);
  FreeLibrary(plugin);
}

// EffectInit for every row makes hidden twins at the page's places in the dialog, kinds and values
// from the tables and settings; ShowEffectPage then shows one page at a time.
TEST(EffectPage, InitClonesEveryPageIntoTheDialog) {
  ASSERT_TRUE(DisplayAvailable()) << "run under xvfb-run";
  MovePageSettingsFromDefaults();
  // Material buttons read and write their files in the settings folder: start from none.
  SetSettingsFolder(MakeTempFolder("gm5-effect-pages").c_str());
  InstallControlKinds();
  WindowHandle dialog = DialogCreate();
  ASSERT_EQ(InitEffectPages(dialog), 1);
  EXPECT_TRUE(PageTwinsMatchTables(dialog));
  EXPECT_TRUE(EachRowShowsOnlyItsPage(dialog));

  // The twins stand where the page's children stand (a combo box's list is not part of its rect).
  HWND page = CreateDialogParamA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(7400),
                                 reinterpret_cast<HWND>(dialog), QuietPageProc, 0);
  ASSERT_NE(page, nullptr);
  for (HWND child : Children(page)) {
    HWND twin = reinterpret_cast<HWND>(DialogItem(dialog, GetDlgCtrlID(child)));
    ASSERT_NE(twin, nullptr) << GetDlgCtrlID(child);
    const RECT a = ClientRect(child), b = ClientRect(twin);
    EXPECT_TRUE(EqualRect(&a, &b)) << GetDlgCtrlID(child);
  }
  DestroyWindow(page);
  EXPECT_EQ(DialogClonePage(dialog, kEffectPageBase + kEffectCount), 0) << "no such page";
  DialogDestroy(dialog);
  ResetSettings();
  SetSettingsFolder("");
}

// The process has room for about 65,000 GDI objects: drawing more shapes than that on one surface
// fails as soon as a pen or brush per call is left behind. Release deletes the bitmap and the DC.
TEST(RenderSurface, DrawingAndReleaseLeaveNoGdiObjectsBehind) {
  RenderSurface surface;
  ASSERT_EQ(CreateRenderSurface(32, 16, &surface), 1);
  HGDIOBJ bitmap = static_cast<HGDIOBJ>(surface.bitmap),
          dc = static_cast<HGDIOBJ>(surface.memoryDc);
  EXPECT_EQ(GetObjectType(bitmap), static_cast<DWORD>(OBJ_BITMAP));
  EXPECT_EQ(GetObjectType(dc), static_cast<DWORD>(OBJ_MEMDC));
  const SurfacePaint paint = {0xFF, 0xFF00, 3};
  const SurfaceRect box = {2, 2, 20, 12};
  const SurfacePoint triangle[] = {{1, 1}, {30, 4}, {9, 15}};
  for (int i = 0; i < 70000; ++i) {
    ASSERT_EQ(SurfaceEllipse(&surface, &box, &paint), 1) << i;
    ASSERT_EQ(SurfacePolygon(&surface, triangle, 3, &paint, kFillWinding), 1) << i;
    ASSERT_EQ(SurfaceRectangle(&surface, &box, &paint), 1) << i;
    ASSERT_EQ(SurfaceLine(&surface, 0, 0, 31, 15, 0xFFFFFF, 2), 1) << i;
    ASSERT_EQ(SurfaceFillRect(&surface, &box, 0x808080), 1) << i;
  }
  ReleaseRenderSurface(&surface, 0);
  EXPECT_EQ(GetObjectType(bitmap), 0u);
  EXPECT_EQ(GetObjectType(dc), 0u);
}
