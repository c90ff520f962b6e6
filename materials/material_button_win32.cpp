// The "MATLBT" window: routes the button's messages to the shared record code (creation, file,
// document line, preview) and does the Windows part itself: painting, the mouse, the kind menu
// and the colour editor. The window owns the block in its user data until WM_DESTROY saves it.
#include "materials/material_button_win32.h"

#include <windows.h>

#include <cstdio>
#include <string>

#include "controls/value_controls.h"
#include "documents/settings.h"
#include "materials/gradient_dialog_win32.h"
#include "materials/material_button.h"
#include "materials/material_file.h"
#include "materials/matrix_dialog_win32.h"
#include "shell/paint_dib_win32.h"
#include "platform/win32/code_module_win32.h"

namespace {

constexpr const char* kKindNames[] = {"Simple", "Gradient", "Texture", "Tile"};

WindowHandle AsHandle(HWND window) {
  return reinterpret_cast<WindowHandle>(window);
}

MovableHandle HeldMaterial(HWND window) {
  return ButtonMaterialHandle(AsHandle(window));
}

void HoldMaterial(HWND window, MovableHandle material) {
  SetWindowLongPtrA(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(material));
}

// The client area less the arrow, inset: where the preview goes.
RECT PreviewRect(HWND window) {
  RECT r;
  GetClientRect(window, &r);
  r.right -= kMaterialArrowWidth;
  InflateRect(&r, -kMaterialPreviewInset, -kMaterialPreviewInset);
  if (r.right < r.left) r.right = r.left;
  if (r.bottom < r.top) r.bottom = r.top;
  return r;
}

// Runs `change` on the locked record; with `preview` the preview is made again, keeping the old
// mean colour when `keepAverage`. Repaints. Returns the record's kind, or -1 without a record.
template <typename Change>
int32_t ChangeMaterial(HWND window, int preview, int keepAverage, Change change) {
  MovableHandle handle = HeldMaterial(window);
  ScopedLock lock(handle);
  if (!lock) return -1;
  Material* material = reinterpret_cast<Material*>(lock.bytes);
  change(material);
  if (preview) {
    const RECT r = PreviewRect(window);
    const uint32_t average = material->averageColour;
    // A failed fill keeps the old preview.
    RefreshMaterialPreview(material, r.right - r.left, r.bottom - r.top);
    if (keepAverage) material->averageColour = average;
  }
  InvalidateRect(window, nullptr, FALSE);
  return material->kind;
}

void NotifyParent(HWND window, int32_t kind) {
  SendMessageA(GetParent(window), kMessageMaterialChanged, static_cast<WPARAM>(kind),
               reinterpret_cast<LPARAM>(window));
}

LRESULT Create(HWND window, uint32_t creationColour) {
  MovableHandle material =
      LoadButtonMaterial(GetDlgCtrlID(window), creationColour, SettingsShiftHeld());
  if (!material) return 0;
  FreeButtonMaterial(HeldMaterial(window));
  HoldMaterial(window, material);
  ChangeMaterial(window, 1, 0, [](Material*) {});
  return 1;
}

LRESULT WriteLine(HWND window, std::FILE* file) {
  if (!file) return 0;
  const std::string line = MaterialDocumentLine(GetDlgCtrlID(window), HeldMaterial(window));
  if (line.empty()) return 0;
  std::fputs(line.c_str(), file);
  return 1;
}

LRESULT ReadLine(HWND window, const char* line) {
  MovableHandle material = HeldMaterial(window);
  if (!ReadMaterialDocumentLine(line, &material)) return 0;
  HoldMaterial(window, material);
  ChangeMaterial(window, 1, 0, [](Material*) {});
  return 1;
}

void Paint(HWND window, HDC dc) {
  RECT client;
  GetClientRect(window, &client);
  const RECT preview = PreviewRect(window);
  uint32_t pressed = 0;
  uint32_t average = 0;
  MovableHandle image = nullptr;
  if (Material* material = MaterialForButton(AsHandle(window))) {
    pressed = material->pressState;
    average = material->averageColour;
    image = material->preview;
    MovableUnlock(HeldMaterial(window));
  }
  const BOOL enabled = IsWindowEnabled(window);
  FillRect(dc, &client, GetSysColorBrush(COLOR_BTNFACE));
  if (enabled && image) PaintPackedDib(dc, preview.left, preview.top, image);

  // The arrow: a small triangle pointing down, centred in the right-most pixels.
  const int cx = client.right - kMaterialArrowWidth / 2 - 1;
  const int cy = (client.top + client.bottom) / 2;
  const POINT arrow[] = {{cx - 4, cy - 2}, {cx + 5, cy - 2}, {cx, cy + 3}};
  HGDIOBJ oldPen = SelectObject(dc, GetStockObject(NULL_PEN));
  HGDIOBJ oldBrush = SelectObject(dc, GetSysColorBrush(enabled ? COLOR_BTNTEXT : COLOR_GRAYTEXT));
  Polygon(dc, arrow, 3);
  SelectObject(dc, oldBrush);
  SelectObject(dc, oldPen);

  char caption[128] = "";
  GetWindowTextA(window, caption, sizeof caption);
  if (caption[0]) {
    HFONT font = reinterpret_cast<HFONT>(SendMessageA(window, WM_GETFONT, 0, 0));
    HGDIOBJ oldFont = SelectObject(dc, font ? font : GetStockObject(DEFAULT_GUI_FONT));
    const int oldMode = SetBkMode(dc, TRANSPARENT);
    const uint32_t colour = enabled && image
                                ? MaterialCaptionColour(average)
                                : GetSysColor(enabled ? COLOR_BTNTEXT : COLOR_GRAYTEXT);
    const COLORREF oldColour = SetTextColor(dc, colour);
    RECT text = preview;
    DrawTextA(dc, caption, -1, &text, DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
    SetTextColor(dc, oldColour);
    SetBkMode(dc, oldMode);
    SelectObject(dc, oldFont);
  }
  DrawEdge(dc, &client, pressed ? EDGE_SUNKEN : EDGE_RAISED, BF_RECT);
}

void ShowKindMenu(HWND window) {
  Material* material = MaterialForButton(AsHandle(window));
  if (!material) return;
  const int32_t kind = material->kind;
  MovableUnlock(HeldMaterial(window));
  HMENU menu = CreatePopupMenu();
  if (!menu) return;
  for (int32_t i = 0; i < 4; ++i)
    AppendMenuA(menu, MF_STRING | (i == kind ? MF_CHECKED : MF_UNCHECKED),
                static_cast<UINT_PTR>(kMaterialKindCommand + i), kKindNames[i]);
  RECT r;
  GetWindowRect(window, &r);
  // The menu's command comes back to this window as WM_COMMAND.
  TrackPopupMenu(menu, TPM_LEFTALIGN | TPM_TOPALIGN | TPM_LEFTBUTTON, r.right - kMaterialArrowWidth,
                 r.bottom, 0, window, nullptr);
  DestroyMenu(menu);
}

// The Gradient kind's editor: the Gradient dialog on copies of the description and its marker
// list; OK copies both back.
void EditGradient(HWND window) {
  Material* material = MaterialForButton(AsHandle(window));
  if (!material) return;
  GradientSpec spec = material->gradient;
  FountainGradient fountain = material->fountain;
  MovableUnlock(HeldMaterial(window));
  if (RunGradientDialog(AsHandle(GetParent(window)), &spec, &fountain))
    ChangeMaterial(window, 1, 0, [&spec, &fountain](Material* m) {
      m->gradient = spec;
      m->fountain = fountain;
    });
  NotifyParent(window, kMaterialGradient);
}

// The Tile editor: the Matrix dialog on the tile part; on OK the dialog has freed the old image,
// and the record takes the picked tile at once.
void EditTile(HWND window) {
  TileRef tile;
  {
    ScopedButtonMaterial held(AsHandle(window));
    if (!held.material) return;
    GetMaterialTile(held.material, &tile);
  }
  if (RunMatrixDialog(AsHandle(GetParent(window)), &tile))
    ChangeMaterial(window, 1, 0, [&tile](Material* m) { SetMaterialTile(m, &tile); });
}

void OpenEditor(HWND window) {
  Material* material = MaterialForButton(AsHandle(window));
  if (!material) return;
  const int32_t kind = material->kind;
  uint32_t colour = material->solidColour;
  MovableUnlock(HeldMaterial(window));
  switch (kind) {
    case kMaterialSimple:
      if (ChooseColour(AsHandle(GetParent(window)), &colour))
        ChangeMaterial(window, 1, 0, [colour](Material* m) { m->solidColour = colour; });
      break;
    case kMaterialGradient:
      EditGradient(window);
      return;  // the Gradient editor tells the parent itself
    case kMaterialTile:
      EditTile(window);
      break;
    default:
      return;  // the texture editor is not part of this build
  }
  NotifyParent(window, kind);
}

void Press(HWND window, int x) {
  RECT client;
  GetClientRect(window, &client);
  const uint32_t bit =
      x >= client.right - kMaterialArrowWidth ? kMaterialArrowPressed : kMaterialBodyPressed;
  if (ChangeMaterial(window, 0, 0, [bit](Material* m) { m->pressState |= bit; }) < 0) return;
  SetCapture(window);
  UpdateWindow(window);
}

void Release(HWND window, int x, int y) {
  if (GetCapture() != window) return;
  ReleaseCapture();
  Material* material = MaterialForButton(AsHandle(window));
  if (!material) return;
  const uint32_t pressed = material->pressState;
  MovableUnlock(HeldMaterial(window));
  RECT client;
  GetClientRect(window, &client);
  const POINT at = {x, y};
  if (PtInRect(&client, at)) {
    if (pressed & kMaterialArrowPressed)
      SendMessageA(window, kMessageMaterialMenu, 0, 0);
    else if (pressed & kMaterialBodyPressed)
      SendMessageA(window, WM_COMMAND, kMaterialEditCommand, 0);
  }
  ChangeMaterial(window, 0, 0, [](Material* m) { m->pressState = 0; });
}

LRESULT CALLBACK MaterialButtonProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case kMessageMaterialCreate:
      return Create(window, static_cast<uint32_t>(lParam));
    case kMessageMaterialDuplicate:
      return reinterpret_cast<LRESULT>(DuplicateButtonMaterial(HeldMaterial(window)));
    case kMessageWriteLine:
      return WriteLine(window, reinterpret_cast<std::FILE*>(lParam));
    case kMessageReadLine:
      return ReadLine(window, reinterpret_cast<const char*>(lParam));
    case kMessageMaterialMenu:
      ShowKindMenu(window);
      return 0;
    case WM_COMMAND: {
      const int32_t id = LOWORD(wParam);
      if (id == kMaterialEditCommand) {
        OpenEditor(window);
      } else if (id >= kMaterialKindCommand && id < kMaterialKindCommand + 4) {
        // A new kind shows at once; its mean colour waits for the next edit.
        const int32_t kind = ChangeMaterial(
            window, 1, 1, [id](Material* m) { m->kind = id - kMaterialKindCommand; });
        if (kind >= 0) NotifyParent(window, kind);
      }
      return 0;
    }
    case WM_LBUTTONDOWN:
      Press(window, static_cast<short>(LOWORD(lParam)));
      return 0;
    case WM_LBUTTONUP:
      Release(window, static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam)));
      return 0;
    case WM_ENABLE:
      InvalidateRect(window, nullptr, FALSE);
      return 0;
    case WM_ERASEBKGND:
      return 1;
    case WM_PAINT: {
      PAINTSTRUCT paint;
      HDC dc = BeginPaint(window, &paint);
      if (dc) Paint(window, dc);
      EndPaint(window, &paint);
      return 0;
    }
    case WM_PRINTCLIENT:
      Paint(window, reinterpret_cast<HDC>(wParam));
      return 0;
    case WM_DESTROY:
      SaveButtonMaterial(GetDlgCtrlID(window), HeldMaterial(window));
      HoldMaterial(window, nullptr);
      return 0;
    default:
      return DefWindowProcA(window, message, wParam, lParam);
  }
}

HINSTANCE g_classInstance = nullptr;

}  // namespace

int RegisterMaterialButtonClass() {
  if (g_classInstance) return 1;
  HINSTANCE instance = CodeModule();
  WNDCLASSA c = {};
  c.style = CS_GLOBALCLASS | CS_HREDRAW | CS_VREDRAW;
  c.lpfnWndProc = MaterialButtonProc;
  c.hInstance = instance;
  c.hCursor = LoadCursorA(nullptr, reinterpret_cast<LPCSTR>(IDC_ARROW));
  c.lpszClassName = kMaterialButtonClass;
  if (!RegisterClassA(&c)) return 0;
  g_classInstance = instance;
  return 1;
}

void UnregisterMaterialButtonClass() {
  if (!g_classInstance) return;
  UnregisterClassA(kMaterialButtonClass, g_classInstance);
  g_classInstance = nullptr;
}

int CreateMaterialForWindow(WindowHandle button, uint32_t creationColour) {
  HWND window = reinterpret_cast<HWND>(button);
  if (!window) return 0;
  SendMessageA(window, kMessageMaterialCreate, 0, static_cast<LPARAM>(creationColour));
  return ButtonMaterialHandle(button) != nullptr;
}
