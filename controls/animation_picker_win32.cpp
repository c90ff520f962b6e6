// The animation picker on real windows, window class "ANMCTL": the class procedure that routes
// creation, binding, the frame service, document lines and the "Select..." button to the picker's
// shared behaviour, and the painting of the first frame over the strip that shows the path.
#include "controls/animation_picker_win32.h"

#include <windows.h>

#include <cstdio>

#include "controls/animation_picker.h"
#include "controls/control_kinds.h"
#include "platform/win32/code_module_win32.h"
#include "shell/library_state.h"
#include "shell/packed_dib.h"
#include "shell/skinned_button_win32.h"

namespace {

// wParam 0 makes the state and the button; 1 binds the path setting in lParam and loads.
constexpr UINT kMessagePickerBind = 1224;
constexpr UINT kMessagePickerFrame = 1225;  // wParam the frame, lParam the delay's address
constexpr int kSelectButtonId = 1;
constexpr int kSelectButtonHeight = 23;
constexpr DWORD kSelectButtonStyle = 0x50010300;  // child, visible, tab stop, centred caption
// Below the picture: the path strip, 20 high, and the button under it.
constexpr int kPictureMargin = 43;
constexpr int kPathStripHeight = 20;
// Single line, centred both ways, no prefix, the path shortened in its middle.
constexpr UINT kPathFormat = DT_PATH_ELLIPSIS | DT_NOPREFIX | DT_SINGLELINE | DT_VCENTER | DT_CENTER;
static_assert(kPathFormat == 18469);

WindowHandle AsHandle(HWND window) {
  return reinterpret_cast<WindowHandle>(window);
}

// Where the button stands: along the bottom of the client rectangle shrunk by 1, as wide as it.
RECT SelectButtonBox(HWND window) {
  RECT r;
  GetClientRect(window, &r);
  InflateRect(&r, -1, -1);
  r.top = r.bottom - kSelectButtonHeight;
  return r;
}

// The "Select..." button, once.
void CreateSelectButton(HWND window) {
  if (GetDlgItem(window, kSelectButtonId)) return;
  const RECT r = SelectButtonBox(window);
  HWND button = CreateWindowExA(0, "BUTTON", "Select...", kSelectButtonStyle, r.left, r.top,
                                r.right - r.left, r.bottom - r.top, window,
                                reinterpret_cast<HMENU>(static_cast<intptr_t>(kSelectButtonId)),
                                CodeModule(), nullptr);
  if (!button) return;
  if (HFONT font = reinterpret_cast<HFONT>(SendMessageA(GetParent(window), WM_GETFONT, 0, 0)))
    SendMessageA(button, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
  SkinButton(button);
}

// Frame 0 of the held block, centred in the picture area and clipped to it.
void PaintFirstFrame(HWND window, HDC dc, const RECT& area) {
  int32_t delay = 0;
  ScopedBlock frame(AnimationPickerFrame(AsHandle(window), 0, &delay));
  ScopedLock pixels(frame.handle);
  if (!pixels) return;
  const BitmapInfoHeader* h = reinterpret_cast<const BitmapInfoHeader*>(pixels.bytes);
  const int left = area.left + (area.right - area.left - h->biWidth) / 2;
  const int top = area.top + (area.bottom - area.top - h->biHeight) / 2;
  const int saved = SaveDC(dc);
  IntersectClipRect(dc, area.left, area.top, area.right, area.bottom);
  SetDIBitsToDevice(dc, left, top, h->biWidth, h->biHeight, 0, 0, 0, h->biHeight,
                    DibBits(pixels.bytes), reinterpret_cast<const BITMAPINFO*>(pixels.bytes),
                    DIB_RGB_COLORS);
  RestoreDC(dc, saved);
}

// The path strip: a light field framed in the shadow colour, the path in it in Arial 12.
void PaintPathStrip(HWND window, HDC dc) {
  RECT strip;
  GetClientRect(window, &strip);
  InflateRect(&strip, 0, -1);
  strip.bottom -= kSelectButtonHeight;
  strip.top = strip.bottom - kPathStripHeight;
  FillRect(dc, &strip, GetSysColorBrush(COLOR_3DHIGHLIGHT));
  FrameRect(dc, &strip, GetSysColorBrush(COLOR_BTNSHADOW));
  InflateRect(&strip, -3, -1);
  const char* path = AnimationPickerPath(AsHandle(window));
  if (!path || !path[0]) return;
  // The path is drawn from a copy: DT_PATH_ELLIPSIS may only shorten what is shown.
  char shown[kAnimationPathLimit + 1];
  std::snprintf(shown, sizeof shown, "%s", path);
  HGDIOBJ previous = DialogFonts[2] ? SelectObject(dc, static_cast<HFONT>(DialogFonts[2]))
                                    : nullptr;
  const int mode = SetBkMode(dc, TRANSPARENT);
  DrawTextExA(dc, shown, -1, &strip, kPathFormat, nullptr);
  SetBkMode(dc, mode);
  if (previous) SelectObject(dc, previous);
}

void Paint(HWND window, HDC dc) {
  RECT area;
  GetClientRect(window, &area);
  InflateRect(&area, -1, -1);
  area.bottom -= kPictureMargin;
  FillRect(dc, &area, GetSysColorBrush(COLOR_BTNFACE));
  if (area.right > area.left && area.bottom > area.top) PaintFirstFrame(window, dc, area);
  PaintPathStrip(window, dc);
}

void Repaint(HWND window) {
  InvalidateRect(window, nullptr, TRUE);
}

LRESULT CALLBACK AnimationPickerProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_CREATE:
      CreateSelectButton(window);
      return 0;
    case kMessagePickerBind:
      if (wParam == 0) {
        CreateSelectButton(window);
        return AnimationPickerCreate(AsHandle(window));
      }
      {
        const int bound = AnimationPickerBind(AsHandle(window), reinterpret_cast<char*>(lParam));
        Repaint(window);
        return bound;
      }
    case WM_SIZE: {
      // A picker sized after it was made keeps its button along the bottom.
      const RECT r = SelectButtonBox(window);
      MoveWindow(GetDlgItem(window, kSelectButtonId), r.left, r.top, r.right - r.left,
                 r.bottom - r.top, TRUE);
      return 0;
    }
    case kMessagePickerFrame: {
      const int32_t frame = static_cast<int32_t>(wParam);
      MovableHandle picture = AnimationPickerFrame(AsHandle(window), frame,
                                                   reinterpret_cast<int32_t*>(lParam));
      // The count question answers 1 when there is a block to count.
      if (frame == kAnimationFrameCount) return AnimationPickerBlock(AsHandle(window)) ? 1 : 0;
      return reinterpret_cast<LRESULT>(picture);
    }
    case kMessageWriteLine:
      return WriteControlLine(AsHandle(window), reinterpret_cast<std::FILE*>(lParam));
    case kMessageReadLine: {
      const int taken =
          AnimationPickerTakeLine(AsHandle(window), reinterpret_cast<const char*>(lParam));
      if (taken) Repaint(window);
      return taken;
    }
    case WM_COMMAND:
      if (LOWORD(wParam) == kSelectButtonId && HIWORD(wParam) == BN_CLICKED) {
        AnimationPickerChoose(AsHandle(window));
        Repaint(window);
      }
      return 0;
    case WM_ERASEBKGND: {
      HDC dc = reinterpret_cast<HDC>(wParam);
      RECT r;
      GetClientRect(window, &r);
      FillRect(dc, &r, GetSysColorBrush(COLOR_BTNFACE));
      FrameRect(dc, &r, GetSysColorBrush(COLOR_BTNSHADOW));
      return 1;
    }
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
      AnimationPickerDestroy(AsHandle(window));
      return DefWindowProcA(window, message, wParam, lParam);
    default:
      return DefWindowProcA(window, message, wParam, lParam);
  }
}

HINSTANCE g_classInstance = nullptr;

}  // namespace

int RegisterAnimationPickerClass() {
  if (g_classInstance) return 1;
  HINSTANCE instance = CodeModule();
  WNDCLASSA c = {};
  c.style = CS_GLOBALCLASS;
  c.lpfnWndProc = AnimationPickerProc;
  c.hInstance = instance;
  c.hCursor = LoadCursorA(nullptr, reinterpret_cast<LPCSTR>(IDC_ARROW));
  c.lpszClassName = kAnimationPickerClass;
  if (!RegisterClassA(&c)) return 0;
  g_classInstance = instance;
  return 1;
}

void UnregisterAnimationPickerClass() {
  if (!g_classInstance) return;
  UnregisterClassA(kAnimationPickerClass, g_classInstance);
  g_classInstance = nullptr;
}
