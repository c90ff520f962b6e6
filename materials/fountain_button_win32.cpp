// The "FOUNTB" window: routes its messages to the shared record code (creation, file, document
// line, marker editing) and does the Windows part itself: the cached strip, painting, the mouse,
// the two menus and the colour and position choices. After every change the parent gets a
// WM_COMMAND bearing the button's id.
#include "materials/fountain_button_win32.h"

#include <windows.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "controls/value_controls.h"
#include "documents/settings.h"
#include "materials/fountain_button.h"
#include "materials/fountain_library.h"
#include "materials/fountain_markers.h"
#include "materials/gradient_dialog_win32.h"
#include "platform/win32/code_module_win32.h"
#include "shell/messages.h"
#include "shell/paint_dib_win32.h"

namespace {

constexpr const char kNoMarkerSpace[] =
    "No more marker space is available. Delete an existing marker.";
constexpr const char kLibraryAddFailed[] = "There has been an error adding this library entry.";

// Menu commands.
enum : UINT {
  kCommandDeleteMarker = 1,
  kCommandChangeColour,
  kCommandAdjustPosition,
  kCommandAddToLibrary,
  kCommandManageLibrary,
};

WindowHandle AsHandle(HWND window) {
  return reinterpret_cast<WindowHandle>(window);
}

MovableHandle HeldRecord(HWND window) {
  return reinterpret_cast<MovableHandle>(GetWindowLongPtrA(window, GWLP_USERDATA));
}

struct StripPlace {
  int left, top, width, height;
};

StripPlace PlaceOfStrip(HWND window) {
  RECT r;
  GetClientRect(window, &r);
  StripPlace s = {kStripInsetX, kStripInsetTop, r.right - 2 * kStripInsetX,
                  r.bottom - kStripInsetTop - kStripInsetBottom};
  if (s.width < 1) s.width = 1;
  if (s.height < 1) s.height = 1;
  return s;
}

// Renders the strip picture again for the record as it stands, freeing the old one.
void RefreshStrip(HWND window, FountainGradient* gradient) {
  FountainRunTime state;
  GetFountainRunTime(gradient, &state);
  MovableFree(state.strip);
  const StripPlace s = PlaceOfStrip(window);
  state.strip = FountainStrip(gradient, s.width, s.height);
  SetFountainRunTime(gradient, &state);
}

void Notify(HWND window) {
  SendMessageA(GetParent(window), WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(window), 0),
               reinterpret_cast<LPARAM>(window));
}

// Runs `change` on the locked record; when it answers nonzero the strip is made again, the
// window repainted and, with `notify`, the parent told. Returns what `change` answered, 0 without
// a record.
template <typename Change>
int ChangeRecord(HWND window, Change change, int notify = 1) {
  int changed = 0;
  {
    ScopedLock lock(HeldRecord(window));
    if (!lock) return 0;
    FountainGradient* gradient = reinterpret_cast<FountainGradient*>(lock.bytes);
    changed = change(gradient);
    if (changed) RefreshStrip(window, gradient);
  }
  InvalidateRect(window, nullptr, FALSE);
  if (changed && notify) Notify(window);
  return changed;
}

// A copy of the record (for reading fields outside a lock). 0 without a record.
int CopyRecord(HWND window, FountainGradient* copy) {
  ScopedLock lock(HeldRecord(window));
  if (!lock) return 0;
  std::memcpy(copy, lock.bytes, kFountainSize);
  return 1;
}

void FreeRecord(HWND window) {
  MovableHandle record = HeldRecord(window);
  if (!record) return;
  {
    ScopedLock lock(record);
    if (lock) {
      FountainRunTime state;
      GetFountainRunTime(reinterpret_cast<FountainGradient*>(lock.bytes), &state);
      MovableFree(state.strip);
    }
  }
  MovableFree(record);
  SetWindowLongPtrA(window, GWLP_USERDATA, 0);
}

LRESULT Create(HWND window, WPARAM useFile, const FountainGradient* copy) {
  char caption[256] = "";
  GetWindowTextA(window, caption, sizeof caption);
  const int looped = std::strstr(caption, kFountainLoopedCaption) != nullptr;
  MovableHandle record = MakeFountainRecord(GetDlgCtrlID(window), useFile == kFountainUseFile,
                                            SettingsShiftHeld(), copy, looped);
  if (!record) return 0;
  FreeRecord(window);
  SetWindowLongPtrA(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(record));
  ChangeRecord(window, [](FountainGradient*) { return 1; }, 0);
  return 1;
}

void SaveAndFree(HWND window) {
  FountainGradient gradient;
  if (CopyRecord(window, &gradient) && (gradient.flags & kFountainOwnFile)) {
    char path[1024];
    // A file that can't be written is simply not kept.
    if (FountainFilePath(GetDlgCtrlID(window), path, sizeof path))
      WriteFountainFile(path, &gradient);
  }
  FreeRecord(window);
}

LRESULT WriteLine(HWND window, std::FILE* file) {
  FountainGradient gradient;
  if (!file || !CopyRecord(window, &gradient)) return 0;
  std::fputs(FountainDocumentLine(GetDlgCtrlID(window), &gradient).c_str(), file);
  return 1;
}

LRESULT ReadLine(HWND window, const char* line) {
  return ChangeRecord(window, [line](FountainGradient* gradient) {
    FountainRunTime state;
    GetFountainRunTime(gradient, &state);
    if (!ReadFountainDocumentLine(line, gradient)) return 0;
    // The line cleared the run-time spans; the strip picture is still ours to free.
    state.dragging = 0;
    state.hotMarker = -1;
    SetFountainRunTime(gradient, &state);
    return 1;
  });
}

uint32_t* ColourField(FountainGradient* gradient, int32_t which) {
  if (which == kFountainLeftEnd) return &gradient->leftColour;
  if (which == kFountainRightEnd) return &gradient->rightColour;
  return nullptr;
}

void ChooseMarkerColour(HWND window, int32_t which) {
  FountainGradient gradient;
  if (!CopyRecord(window, &gradient)) return;
  uint32_t colour;
  if (which == kFountainLeftEnd || which == kFountainRightEnd) {
    colour = *ColourField(&gradient, which) & 0xFFFFFF;
  } else if (which >= 0 && static_cast<uint32_t>(which) < gradient.markerCount &&
             which < kFountainMarkers) {
    std::memcpy(&colour, &gradient.markers[which], sizeof colour);
    colour &= 0xFFFFFF;
  } else {
    return;
  }
  if (!ChooseColour(AsHandle(GetParent(window)), &colour)) return;
  ChangeRecord(window, [which, colour](FountainGradient* g) {
    if (uint32_t* field = ColourField(g, which)) {
      *field = colour;
      return 1;
    }
    if (which < 0 || static_cast<uint32_t>(which) >= g->markerCount) return 0;
    FountainMarker marker;
    std::memcpy(&marker, &g->markers[which], sizeof marker);
    marker = (marker & 0xFF000000u) | (colour & 0xFFFFFF);
    std::memcpy(&g->markers[which], &marker, sizeof marker);
    return 1;
  });
}

void AddMarker(HWND window, int32_t wanted) {
  FountainGradient gradient;
  if (!CopyRecord(window, &gradient)) return;
  const int32_t position = FindFreeMarkerPosition(&gradient, wanted);
  if (position < 0) {
    ShowMessage(AsHandle(GetParent(window)), kNoMarkerSpace);
    return;
  }
  uint32_t colour = kDefaultMarkerColour;
  if (!ChooseColour(AsHandle(GetParent(window)), &colour)) return;
  ChangeRecord(window, [position, colour](FountainGradient* g) {
    return AddFountainMarker(g, position, colour);
  });
}

void DeleteMarker(HWND window, int32_t index) {
  const char* message = nullptr;
  ChangeRecord(window, [index, &message](FountainGradient* g) {
    return DeleteFountainMarker(g, index, &message);
  });
  if (message) ShowMessage(AsHandle(GetParent(window)), message);
}

void AdjustMarker(HWND window, int32_t index) {
  FountainGradient gradient;
  if (!CopyRecord(window, &gradient) || index < 0 ||
      static_cast<uint32_t>(index) >= gradient.markerCount || index >= kFountainMarkers)
    return;
  FountainMarker marker;
  std::memcpy(&marker, &gradient.markers[index], sizeof marker);
  int32_t position = static_cast<int32_t>(marker >> 24);
  if (!RunMarkerPositionDialog(AsHandle(GetParent(window)), &position)) return;
  // The new place is taken as it is, even when another marker stands there.
  ChangeRecord(window, [index, position](FountainGradient* g) {
    if (static_cast<uint32_t>(index) >= g->markerCount) return 0;
    FountainMarker m;
    std::memcpy(&m, &g->markers[index], sizeof m);
    m = (m & 0xFFFFFF) | (static_cast<uint32_t>(position & 0xFF) << 24);
    std::memcpy(&g->markers[index], &m, sizeof m);
    SortFountainMarkers(g->markers, g->markerCount);
    return 1;
  });
}

UINT TrackMenu(HWND window, HMENU menu, const POINT* at) {
  POINT p = {0, 0};
  if (at) p = *at;
  return static_cast<UINT>(TrackPopupMenu(menu, TPM_RETURNCMD | TPM_LEFTALIGN | TPM_TOPALIGN |
                                                    TPM_RIGHTBUTTON | TPM_NONOTIFY,
                                          p.x, p.y, 0, window, nullptr));
}

void MarkerMenu(HWND window, int32_t index, const POINT* at) {
  HMENU menu = CreatePopupMenu();
  if (!menu) return;
  AppendMenuA(menu, MF_STRING, kCommandDeleteMarker, "Delete marker");
  AppendMenuA(menu, MF_STRING, kCommandChangeColour, "Change color");
  AppendMenuA(menu, MF_STRING, kCommandAdjustPosition, "Adjust position");
  const UINT command = TrackMenu(window, menu, at);
  DestroyMenu(menu);
  if (command == kCommandDeleteMarker) SendMessageA(window, kMessageFountainDeleteMarker, index, 0);
  if (command == kCommandChangeColour) SendMessageA(window, kMessageFountainChooseColour, index, 0);
  if (command == kCommandAdjustPosition)
    SendMessageA(window, kMessageFountainAdjustMarker, index, 0);
}

void LibraryMenu(HWND window, const POINT* at) {
  HMENU menu = CreatePopupMenu();
  if (!menu) return;
  AppendMenuA(menu, MF_STRING, kCommandAddToLibrary, "Add to library");
  AppendMenuA(menu, MF_STRING, kCommandManageLibrary, "Manage library");
  const UINT command = TrackMenu(window, menu, at);
  DestroyMenu(menu);
  FountainGradient gradient;
  if (!command || !CopyRecord(window, &gradient)) return;
  if (command == kCommandAddToLibrary) {
    if (!AddToLibrary(&gradient)) ShowMessage(AsHandle(GetParent(window)), kLibraryAddFailed);
    return;
  }
  if (RunGradientLibraryDialog(AsHandle(GetParent(window)), &gradient))
    ChangeRecord(window, [&gradient](FountainGradient* g) {
      g->markerCount = gradient.markerCount;
      g->leftColour = gradient.leftColour;
      g->rightColour = gradient.rightColour;
      std::memcpy(g->markers, gradient.markers, sizeof g->markers);
      return 1;
    });
}

int32_t HitTest(HWND window, int x, int y, FountainGradient* gradient) {
  if (!CopyRecord(window, gradient)) return kFountainNowhere;
  RECT r;
  GetClientRect(window, &r);
  return FountainHitTest(gradient, r.right, x, y);
}

void DoubleClick(HWND window, int x, int y) {
  FountainGradient gradient;
  const int32_t hit = HitTest(window, x, y, &gradient);
  if (hit == kFountainRightEnd && (gradient.flags & kFountainLooped)) return;
  if (hit >= 0 || hit == kFountainLeftEnd || hit == kFountainRightEnd) {
    SendMessageA(window, kMessageFountainChooseColour, static_cast<WPARAM>(hit), 0);
  } else if (hit == kFountainEmptyBar) {
    const StripPlace s = PlaceOfStrip(window);
    SendMessageA(window, kMessageFountainAddMarker,
                 static_cast<WPARAM>(ClickMarkerPosition(x, s.left, s.width)), 0);
  }
}

void RightClick(HWND window, int x, int y) {
  FountainGradient gradient;
  const int32_t hit = HitTest(window, x, y, &gradient);
  POINT at = {x, y};
  ClientToScreen(window, &at);
  if (hit == kFountainLeftEnd || hit == kFountainRightEnd)
    SendMessageA(window, kMessageFountainChooseColour, static_cast<WPARAM>(hit), 0);
  else if (hit >= 0 && (GetKeyState(VK_SHIFT) & 0x8000))
    SendMessageA(window, kMessageFountainDeleteMarker, static_cast<WPARAM>(hit), 0);
  else if (hit >= 0)
    SendMessageA(window, kMessageFountainMarkerMenu, static_cast<WPARAM>(hit),
                 reinterpret_cast<LPARAM>(&at));
  else
    SendMessageA(window, kMessageFountainLibraryMenu, 0, reinterpret_cast<LPARAM>(&at));
}

void SetPointerState(HWND window, const FountainRunTime& next) {
  ScopedLock lock(HeldRecord(window));
  if (!lock) return;
  SetFountainRunTime(reinterpret_cast<FountainGradient*>(lock.bytes), &next);
}

void StartDrag(HWND window, int x, int y) {
  FountainGradient gradient;
  const int32_t hit = HitTest(window, x, y, &gradient);
  if (hit < 0) return;
  FountainRunTime state;
  GetFountainRunTime(&gradient, &state);
  state.hotMarker = hit;
  state.dragging = 1;
  state.dragStartX = x;
  state.dragLastX = x;  // held within the strip once the pointer moves
  SetPointerState(window, state);
  SetCapture(window);
  InvalidateRect(window, nullptr, FALSE);
}

void MoveDrag(HWND window, int x) {
  FountainGradient gradient;
  if (!CopyRecord(window, &gradient)) return;
  FountainRunTime state;
  GetFountainRunTime(&gradient, &state);
  if (!state.dragging) return;
  const StripPlace s = PlaceOfStrip(window);
  state.dragLastX = HoldDragX(x, s.left, s.width);
  SetPointerState(window, state);
  InvalidateRect(window, nullptr, FALSE);
}

// Ends a drag; with `drop` the marker moves to where the ghost stands.
void EndDrag(HWND window, int drop) {
  if (GetCapture() == window) ReleaseCapture();
  FountainGradient gradient;
  if (!CopyRecord(window, &gradient)) return;
  FountainRunTime state;
  GetFountainRunTime(&gradient, &state);
  if (!state.dragging) return;
  const int32_t index = state.hotMarker;
  // The marker lands where the ghost stands, the pointer's place held within the strip.
  const int32_t moved = state.dragLastX - state.dragStartX;
  const StripPlace s = PlaceOfStrip(window);
  const int32_t position = DragEndPosition(state.dragStartX, moved, s.left, s.width);
  state.dragging = 0;
  state.hotMarker = -1;
  SetPointerState(window, state);
  InvalidateRect(window, nullptr, FALSE);
  if (!drop || moved == 0) return;
  // A marker with no free place left to land on is lost, and that is a change too.
  ChangeRecord(window, [index, position](FountainGradient* g) {
    DropFountainMarker(g, index, position);
    return 1;
  });
}

// A triangle pointing down with its tip at (x, 10), filled with `colour`.
void Triangle(HDC dc, int x, COLORREF colour) {
  const POINT points[] = {{x - 4, 4}, {x + 4, 4}, {x, 10}};
  HBRUSH brush = CreateSolidBrush(colour);
  HGDIOBJ oldBrush = SelectObject(dc, brush);
  HGDIOBJ oldPen = SelectObject(dc, GetStockObject(BLACK_PEN));
  Polygon(dc, points, 3);
  SelectObject(dc, oldPen);
  SelectObject(dc, oldBrush);
  DeleteObject(brush);
}

void Paint(HWND window, HDC dc) {
  RECT client;
  GetClientRect(window, &client);
  FillRect(dc, &client, GetSysColorBrush(COLOR_BTNFACE));
  FountainGradient gradient;
  if (!CopyRecord(window, &gradient)) return;
  FountainRunTime state;
  GetFountainRunTime(&gradient, &state);
  const StripPlace s = PlaceOfStrip(window);
  const BOOL enabled = IsWindowEnabled(window);
  if (enabled) PaintPackedDib(dc, s.left, s.top, state.strip);
  RECT frame = {s.left - 1, s.top - 1, s.left + s.width + 1, s.top + s.height + 1};
  FrameRect(dc, &frame, GetSysColorBrush(COLOR_BTNSHADOW));
  if (!enabled) return;
  const uint32_t right =
      (gradient.flags & kFountainLooped) ? gradient.leftColour : gradient.rightColour;
  Triangle(dc, s.left, gradient.leftColour & 0xFFFFFF);
  Triangle(dc, s.left + s.width, right & 0xFFFFFF);
  const int32_t count = gradient.markerCount < static_cast<uint32_t>(kFountainMarkers)
                            ? static_cast<int32_t>(gradient.markerCount)
                            : kFountainMarkers;
  for (int32_t i = 0; i < count; ++i) {
    FountainMarker marker;
    std::memcpy(&marker, &gradient.markers[i], sizeof marker);
    Triangle(dc, s.left + MarkerOffset(&gradient, i, s.width), marker & 0xFFFFFF);
  }
  if (state.dragging && state.hotMarker >= 0 && state.hotMarker < count) {
    FountainMarker marker;
    std::memcpy(&marker, &gradient.markers[state.hotMarker], sizeof marker);
    Triangle(dc, state.dragLastX, ~marker & 0xFFFFFF);
  }
}

LRESULT CALLBACK FountainButtonProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  const int x = static_cast<short>(LOWORD(lParam));
  const int y = static_cast<short>(HIWORD(lParam));
  switch (message) {
    case kMessageFountainCreate:
      return Create(window, wParam, reinterpret_cast<const FountainGradient*>(lParam));
    case kMessageWriteLine:
      return WriteLine(window, reinterpret_cast<std::FILE*>(lParam));
    case kMessageReadLine:
      return ReadLine(window, reinterpret_cast<const char*>(lParam));
    case kMessageFountainChooseColour:
      ChooseMarkerColour(window, static_cast<int32_t>(wParam));
      return 0;
    case kMessageFountainAddMarker:
      AddMarker(window, static_cast<int32_t>(wParam));
      return 0;
    case kMessageFountainDeleteMarker:
      DeleteMarker(window, static_cast<int32_t>(wParam));
      return 0;
    case kMessageFountainAdjustMarker:
      AdjustMarker(window, static_cast<int32_t>(wParam));
      return 0;
    case kMessageFountainMarkerMenu:
      MarkerMenu(window, static_cast<int32_t>(wParam), reinterpret_cast<const POINT*>(lParam));
      return 0;
    case kMessageFountainLibraryMenu:
      LibraryMenu(window, reinterpret_cast<const POINT*>(lParam));
      return 0;
    case WM_LBUTTONDBLCLK:
      DoubleClick(window, x, y);
      return 0;
    case WM_RBUTTONUP:
      RightClick(window, x, y);
      return 0;
    case WM_LBUTTONDOWN:
      StartDrag(window, x, y);
      return 0;
    case WM_MOUSEMOVE:
      MoveDrag(window, x);
      return 0;
    case WM_LBUTTONUP:
      EndDrag(window, 1);
      return 0;
    case WM_CANCELMODE:
      EndDrag(window, 0);  // a drag cut short leaves the marker where it was
      return 0;
    case WM_SIZE:
      ChangeRecord(window, [](FountainGradient*) { return 1; }, 0);
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
      SaveAndFree(window);
      return 0;
    default:
      return DefWindowProcA(window, message, wParam, lParam);
  }
}

HINSTANCE g_classInstance = nullptr;

}  // namespace

int RegisterFountainButtonClass() {
  if (g_classInstance) return 1;
  HINSTANCE instance = CodeModule();
  WNDCLASSA c = {};
  c.style = CS_GLOBALCLASS | CS_HREDRAW | CS_VREDRAW | CS_DBLCLKS;
  c.lpfnWndProc = FountainButtonProc;
  c.hInstance = instance;
  c.hCursor = LoadCursorA(nullptr, reinterpret_cast<LPCSTR>(IDC_ARROW));
  c.lpszClassName = kFountainButtonClass;
  if (!RegisterClassA(&c)) return 0;
  g_classInstance = instance;
  return 1;
}

void UnregisterFountainButtonClass() {
  if (!g_classInstance) return;
  UnregisterClassA(kFountainButtonClass, g_classInstance);
  g_classInstance = nullptr;
}

int CreateFountainForWindow(WindowHandle button, uint32_t) {
  HWND window = reinterpret_cast<HWND>(button);
  if (!window) return 0;
  SendMessageA(window, kMessageFountainCreate, kFountainUseFile, 0);
  return HeldRecord(window) != nullptr;
}
