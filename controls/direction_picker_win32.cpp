// The direction pickers on real windows: the class procedure that routes set-up, read-back,
// document lines and the mouse to the pickers' shared behaviour, and the painting of the cells.
#include <windows.h>

#include <cstdio>

#include "controls/control_kinds.h"
#include "controls/direction_picker.h"
#include "controls/picker_strips.h"
#include "platform/memory.h"
#include "platform/win32/dialog_win32.h"
#include "shell/packed_dib.h"

namespace {

WindowHandle AsHandle(HWND window) {
  return reinterpret_cast<WindowHandle>(window);
}

// Copies the cell's picture, the square of side h - 4 at (h * cell + 2, 2) of the strip, to
// (left, top). A strip that couldn't be made leaves the cell without a picture.
void CopyCellPicture(HDC dc, MovableHandle strip, int32_t cell, int left, int top) {
  ScopedLock lock(strip);
  if (!lock) return;
  const int h = kPickerStripHeight;
  const BITMAPINFO* info = reinterpret_cast<const BITMAPINFO*>(lock.bytes);
  // Rows of a bottom-up DIB count from the bottom: the square's last row is 2 above it.
  SetDIBitsToDevice(dc, left, top, h - 4, h - 4, h * cell + 2, 2, 0, h, DibBits(lock.bytes), info,
                    DIB_RGB_COLORS);
}

void PaintPicker(HWND window, ControlKind kind) {
  PAINTSTRUCT paint;
  HDC dc = BeginPaint(window, &paint);
  int32_t value = -1;
  const PickerShape* shape = FindPickerShape(kind);
  if (dc && shape && PickerValue(AsHandle(window), &value)) {
    // Each strip is drawn on the fill of the cells it serves: pressed or raised.
    MovableHandle pressed = CreatePickerStrip(kind, GetSysColor(COLOR_BTNSHADOW));
    MovableHandle raised = CreatePickerStrip(kind, GetSysColor(COLOR_BTNFACE));
    for (int32_t cell = 0; cell < shape->cellCount; ++cell) {
      RECT r = {shape->left[cell], shape->top[cell], shape->left[cell] + kPickerCellSide,
                shape->top[cell] + kPickerCellSide};
      int inset;
      if (cell == value) {
        FillRect(dc, &r, GetSysColorBrush(COLOR_BTNSHADOW));
        FrameRect(dc, &r, GetSysColorBrush(COLOR_3DDKSHADOW));
        inset = 2;
      } else {
        FillRect(dc, &r, GetSysColorBrush(COLOR_BTNFACE));
        DrawEdge(dc, &r, BDR_RAISEDINNER, BF_RECT | BF_SOFT);
        inset = 1;
      }
      // A selected cell's picture moves one pixel down and right, so it looks pressed.
      CopyCellPicture(dc, cell == value ? pressed : raised, cell, r.left + inset + 1,
                      r.top + inset + 1);
    }
    MovableFree(pressed);
    MovableFree(raised);
  }
  EndPaint(window, &paint);
}

LRESULT PickerMessage(ControlKind kind, HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case kMessagePickerSetUp:
      PickerSetUp(AsHandle(window), static_cast<int32_t>(wParam),
                  reinterpret_cast<int32_t*>(lParam));
      InvalidateRect(window, nullptr, FALSE);
      return 0;
    case kMessagePickerReadBack:
      PickerReadBack(AsHandle(window));
      return 0;
    case kMessageWriteLine:
      return WriteControlLine(AsHandle(window), reinterpret_cast<std::FILE*>(lParam));
    case kMessageReadLine: {
      const int taken = PickerTakeLine(AsHandle(window), reinterpret_cast<const char*>(lParam));
      if (taken) InvalidateRect(window, nullptr, FALSE);
      return taken;
    }
    case WM_LBUTTONDOWN:
      SetCapture(window);
      if (PickerPress(AsHandle(window), static_cast<short>(LOWORD(lParam)),
                      static_cast<short>(HIWORD(lParam)))) {
        InvalidateRect(window, nullptr, FALSE);
        UpdateWindow(window);
      }
      return 0;
    case WM_LBUTTONUP:
      if (GetCapture() == window) {
        ReleaseCapture();
        PostMessageA(GetParent(window), WM_COMMAND, static_cast<WPARAM>(GetDlgCtrlID(window)),
                     reinterpret_cast<LPARAM>(window));
      }
      return 0;
    case WM_ERASEBKGND:
      return 1;
    case WM_NCPAINT:
      return 0;
    case WM_PAINT:
      PaintPicker(window, kind);
      return 0;
    case WM_DESTROY:
      PickerDestroy(AsHandle(window));
      return DialogCallBase(window, message, wParam, lParam);
    default:
      return DialogCallBase(window, message, wParam, lParam);
  }
}

template <ControlKind Kind>
LRESULT CALLBACK PickerProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  return PickerMessage(Kind, window, message, wParam, lParam);
}

}  // namespace

void* PickerKindProcedure(ControlKind kind) {
  switch (kind) {
    case kControlShadowPicker:
      return reinterpret_cast<void*>(PickerProc<kControlShadowPicker>);
    case kControlScroll4Picker:
      return reinterpret_cast<void*>(PickerProc<kControlScroll4Picker>);
    case kControlScroll2Picker:
      return reinterpret_cast<void*>(PickerProc<kControlScroll2Picker>);
    case kControlScrollHVPicker:
      return reinterpret_cast<void*>(PickerProc<kControlScrollHVPicker>);
    default:
      return nullptr;
  }
}
