// The value kinds on real windows: standard controls subclassed with one class procedure per kind
// (the procedure is the mark of the kind), which answers the two document messages from the kind's
// row and leaves the rest to the standard class; and the colour button's painting.
#include <windows.h>

#include <cstdio>
#include <string>

#include "controls/control_kinds.h"
#include "controls/value_controls.h"
#include "platform/win32/dialog_win32.h"

namespace {

HWND AsWindow(WindowHandle handle) {
  return reinterpret_cast<HWND>(handle);
}
WindowHandle AsHandle(HWND window) {
  return reinterpret_cast<WindowHandle>(window);
}

LRESULT ValueControlMessage(ControlKind kind, HWND window, UINT message, WPARAM wParam,
                            LPARAM lParam) {
  switch (message) {
    case kMessageWriteLine:
      return WriteControlLine(AsHandle(window), reinterpret_cast<std::FILE*>(lParam));
    case kMessageReadLine:
      return kind == kControlUpDown
                 ? 0
                 : TakeControlLine(AsHandle(window), reinterpret_cast<const char*>(lParam));
    default:
      return DialogCallBase(window, message, wParam, lParam);
  }
}

template <ControlKind Kind>
LRESULT CALLBACK KindProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  return ValueControlMessage(Kind, window, message, wParam, lParam);
}

struct KindProcedure {
  ControlKind kind;
  WNDPROC procedure;
};

const KindProcedure kProcedures[] = {
    {kControlColourButton, KindProc<kControlColourButton>},
    {kControlSpinEdit, KindProc<kControlSpinEdit>},
    {kControlSignedSpinEdit, KindProc<kControlSignedSpinEdit>},
    {kControlUpDown, KindProc<kControlUpDown>},
    {kControlCheckBox, KindProc<kControlCheckBox>},
    {kControlTextField, KindProc<kControlTextField>},
    {kControlComboList, KindProc<kControlComboList>},
    {kControlListBoxList, KindProc<kControlListBoxList>},
    {kControlFontBox, KindProc<kControlFontBox>},
};

}  // namespace

int WriteControlLine(WindowHandle control, std::FILE* file) {
  if (!file) return 0;
  std::string line(kControlLineSize, '\0');
  if (!FormatControlLine(control, line.data(), line.size())) return 0;
  std::fprintf(file, "%s\n", line.c_str());
  return 1;
}

void* ValueKindProcedure(ControlKind kind) {
  for (const KindProcedure& k : kProcedures)
    if (k.kind == kind) return reinterpret_cast<void*>(k.procedure);
  return nullptr;
}

int PaintColourButton(WindowHandle dialogHandle, const void* drawItem) {
  const DRAWITEMSTRUCT* item = static_cast<const DRAWITEMSTRUCT*>(drawItem);
  HWND dialog = AsWindow(dialogHandle);
  if (!dialog || !item) return 0;
  BOOL translated = FALSE;
  COLORREF colour = GetDlgItemInt(dialog, static_cast<int>(item->CtlID), &translated, FALSE);
  if (item->itemState & ODS_DISABLED) colour = GetSysColor(COLOR_BTNFACE);
  HDC dc = item->hDC;
  RECT r = item->rcItem;
  HGDIOBJ oldPen = SelectObject(dc, GetStockObject(NULL_PEN));
  HBRUSH back =
      reinterpret_cast<HBRUSH>(SendMessageA(dialog, WM_CTLCOLORBTN, reinterpret_cast<WPARAM>(dc),
                                            reinterpret_cast<LPARAM>(item->hwndItem)));
  if (back) {
    HGDIOBJ old = SelectObject(dc, back);
    Rectangle(dc, r.left, r.top, r.right + 1, r.bottom + 1);
    SelectObject(dc, old);
  }
  HBRUSH fill = CreateSolidBrush(colour);
  HGDIOBJ oldBrush = SelectObject(dc, fill);
  // Without a pen a rectangle covers one pixel less on the right and bottom.
  Rectangle(dc, r.left, r.top, r.right - 1, r.bottom - 1);
  SelectObject(dc, oldBrush);
  DeleteObject(fill);
  SelectObject(dc, oldPen);
  DrawEdge(dc, &r, (item->itemState & ODS_SELECTED) ? EDGE_SUNKEN : EDGE_RAISED, 4111);
  if (item->itemState & ODS_FOCUS) {
    RECT focus = r;
    InflateRect(&focus, -4, -3);
    focus.bottom -= 1;
    DrawFocusRect(dc, &focus);
  }
  return 1;
}
