// Skinned push buttons: an owner-drawn button whose subclass paints it itself, so that buttons of
// dialogs that are not ours (the file dialogs) take the look too.
#include "shell/skinned_button_win32.h"

#include "shell/library_state.h"

namespace {

constexpr char kBaseProp[] = "GM5SkinBase";
constexpr LONG kOwnerDrawStyle = 11;  // BS_OWNERDRAW

void PaintSkin(HWND button, HDC dc) {
  RECT r;
  GetClientRect(button, &r);
  const LRESULT state = SendMessageA(button, BM_GETSTATE, 0, 0);
  const bool pressed = (state & BST_PUSHED) != 0;
  FillRect(dc, &r, GetSysColorBrush(COLOR_BTNFACE));
  DrawEdge(dc, &r, pressed ? EDGE_SUNKEN : EDGE_RAISED, BF_RECT | BF_SOFT);
  char caption[128] = "";
  GetWindowTextA(button, caption, sizeof caption);
  RECT text = r;
  if (pressed) OffsetRect(&text, 1, 1);
  HFONT font = reinterpret_cast<HFONT>(SendMessageA(button, WM_GETFONT, 0, 0));
  HGDIOBJ oldFont = SelectObject(dc, font);
  SetBkMode(dc, TRANSPARENT);
  SetTextColor(dc, GetSysColor(IsWindowEnabled(button) ? COLOR_BTNTEXT : COLOR_GRAYTEXT));
  DrawTextA(dc, caption, -1, &text, DT_CENTER | DT_VCENTER | DT_SINGLELINE);
  SelectObject(dc, oldFont);
  if (GetFocus() == button) {
    InflateRect(&r, -4, -4);
    DrawFocusRect(dc, &r);
  }
}

LRESULT CALLBACK SkinProc(HWND button, UINT message, WPARAM wParam, LPARAM lParam) {
  WNDPROC base = reinterpret_cast<WNDPROC>(GetPropA(button, kBaseProp));
  switch (message) {
    case WM_PAINT: {
      PAINTSTRUCT paint;
      HDC dc = BeginPaint(button, &paint);
      if (dc) PaintSkin(button, dc);
      EndPaint(button, &paint);
      return 0;
    }
    case WM_ERASEBKGND:
      return 1;
    case WM_NCDESTROY:
      RemovePropA(button, kBaseProp);
      break;
  }
  return base ? CallWindowProcA(base, button, message, wParam, lParam)
              : DefWindowProcA(button, message, wParam, lParam);
}

}  // namespace

void SkinButton(HWND button) {
  if (!button || !SoftButtons || GetPropA(button, kBaseProp)) return;
  const LONG style = GetWindowLongA(button, GWL_STYLE);
  SetWindowLongA(button, GWL_STYLE, (style & ~0xF) | kOwnerDrawStyle);
  const LONG_PTR base =
      SetWindowLongPtrA(button, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(SkinProc));
  SetPropA(button, kBaseProp, reinterpret_cast<HANDLE>(base));
  InvalidateRect(button, nullptr, TRUE);
}
