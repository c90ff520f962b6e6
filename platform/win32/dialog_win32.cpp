// The dialog port on real windows: a WindowHandle is an HWND. Value controls are standard controls
// subclassed with one class procedure per kind, and that procedure is the mark of the kind. The
// behaviour of each kind (values, lines, pickers) is the shared code of controls/; this file only
// routes messages to it, and paints colour buttons and pickers.
#include <windows.h>
#include <commctrl.h>

#include <cstdio>
#include <string>

#include "controls/direction_picker.h"
#include "controls/picker_strips.h"
#include "controls/value_controls.h"
#include "materials/material_button_win32.h"
#include "platform/dialog.h"
#include "platform/memory.h"
#include "platform/win32/dialog_win32.h"
#include "shell/packed_dib.h"

namespace {

HWND AsWindow(WindowHandle handle) {
  return reinterpret_cast<HWND>(handle);
}
WindowHandle AsHandle(HWND window) {
  return reinterpret_cast<WindowHandle>(window);
}

constexpr char kBaseProcProp[] = "GM5BaseProc";
constexpr char kKindProp[] = "GM5Kind";
constexpr char kDialogClass[] = "GM5ValueDialog";

struct EnumState {
  DialogChildVisitor visit;
  void* param;
};

BOOL CALLBACK VisitChild(HWND child, LPARAM state) {
  const EnumState* s = reinterpret_cast<const EnumState*>(state);
  return s->visit(AsHandle(child), s->param) ? TRUE : FALSE;
}

LRESULT CallBase(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  WNDPROC base = reinterpret_cast<WNDPROC>(GetPropA(window, kBaseProcProp));
  return base ? CallWindowProcA(base, window, message, wParam, lParam)
              : DefWindowProcA(window, message, wParam, lParam);
}

int WriteLine(HWND window, std::FILE* file) {
  if (!file) return 0;
  std::string line(kDocumentTextLimit + 64, '\0');
  if (!FormatControlLine(AsHandle(window), line.data(), line.size())) return 0;
  std::fprintf(file, "%s\n", line.c_str());
  return 1;
}

// The class procedure of the value kinds: the two document messages, the rest to the base class.
LRESULT ValueControlMessage(ControlKind kind, HWND window, UINT message, WPARAM wParam,
                            LPARAM lParam) {
  switch (message) {
    case kMessageWriteLine:
      return WriteLine(window, reinterpret_cast<std::FILE*>(lParam));
    case kMessageReadLine:
      return kind == kControlUpDown
                 ? 0
                 : TakeControlLine(AsHandle(window), reinterpret_cast<const char*>(lParam));
    case WM_NCDESTROY: {
      const LRESULT result = CallBase(window, message, wParam, lParam);
      RemovePropA(window, kBaseProcProp);
      RemovePropA(window, kKindProp);
      return result;
    }
    default:
      return CallBase(window, message, wParam, lParam);
  }
}

template <ControlKind Kind>
LRESULT CALLBACK KindProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  return ValueControlMessage(Kind, window, message, wParam, lParam);
}

// ---- Pickers
// -------------------------------------------------------------------------------------

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
      return WriteLine(window, reinterpret_cast<std::FILE*>(lParam));
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
      return CallBase(window, message, wParam, lParam);
    default:
      return ValueControlMessage(kind, window, message, wParam, lParam);
  }
}

template <ControlKind Kind>
LRESULT CALLBACK PickerProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  return PickerMessage(Kind, window, message, wParam, lParam);
}

struct KindClass {
  ControlKind kind;
  WNDPROC procedure;
};

const KindClass kKindProcedures[] = {
    {kControlColourButton, KindProc<kControlColourButton>},
    {kControlSpinEdit, KindProc<kControlSpinEdit>},
    {kControlSignedSpinEdit, KindProc<kControlSignedSpinEdit>},
    {kControlUpDown, KindProc<kControlUpDown>},
    {kControlCheckBox, KindProc<kControlCheckBox>},
    {kControlTextField, KindProc<kControlTextField>},
    {kControlComboList, KindProc<kControlComboList>},
    {kControlListBoxList, KindProc<kControlListBoxList>},
    {kControlFontBox, KindProc<kControlFontBox>},
    {kControlShadowPicker, PickerProc<kControlShadowPicker>},
    {kControlScroll4Picker, PickerProc<kControlScroll4Picker>},
    {kControlScroll2Picker, PickerProc<kControlScroll2Picker>},
    {kControlScrollHVPicker, PickerProc<kControlScrollHVPicker>},
};

WNDPROC ProcedureOf(ControlKind kind) {
  for (const KindClass& k : kKindProcedures)
    if (k.kind == kind) return k.procedure;
  return nullptr;
}

// ---- The colour button's look
// --------------------------------------------------------------------

void PaintColourButton(HWND dialog, const DRAWITEMSTRUCT* item) {
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
}

// ---- The dialog's own window
// ---------------------------------------------------------------------

LRESULT CALLBACK DialogProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_COMMAND:
      HandleValueCommand(AsHandle(window), LOWORD(wParam), HIWORD(wParam));
      return 0;
    case WM_DRAWITEM: {
      const DRAWITEMSTRUCT* item = reinterpret_cast<const DRAWITEMSTRUCT*>(lParam);
      if (item && DialogControlKind(AsHandle(item->hwndItem)) == kControlColourButton) {
        PaintColourButton(window, item);
        return TRUE;
      }
      return FALSE;
    }
    case WM_TIMER:
      if (wParam == static_cast<WPARAM>(kUpdateTimerId))
        DialogKillTimer(AsHandle(window), kUpdateTimerId);
      return 0;
    default:
      return DefWindowProcA(window, message, wParam, lParam);
  }
}

int RegisterDialogClass() {
  static int registered = 0;
  if (registered) return RegisterMaterialButtonClass();
  INITCOMMONCONTROLSEX controls = {sizeof controls, ICC_UPDOWN_CLASS};
  InitCommonControlsEx(&controls);
  WNDCLASSA c = {};
  c.lpfnWndProc = DialogProc;
  c.hInstance = GetModuleHandleA(nullptr);
  c.hbrBackground = GetSysColorBrush(COLOR_BTNFACE);
  c.lpszClassName = kDialogClass;
  c.hCursor = LoadCursor(nullptr, IDC_ARROW);
  registered = RegisterClassA(&c) != 0 || GetLastError() == ERROR_CLASS_ALREADY_EXISTS;
  return registered && RegisterMaterialButtonClass();
}

const char* ClassFor(ControlKind kind, DWORD* style) {
  *style = WS_CHILD | WS_VISIBLE;
  switch (kind) {
    case kControlLabel:
      return "STATIC";
    case kControlColourButton:
    case kControlShadowPicker:
    case kControlScroll4Picker:
    case kControlScroll2Picker:
    case kControlScrollHVPicker:
      *style |= BS_OWNERDRAW;
      return "BUTTON";
    case kControlSpinEdit:
    case kControlSignedSpinEdit:
    case kControlTextField:
      *style |= ES_AUTOHSCROLL | WS_BORDER;
      return "EDIT";
    case kControlUpDown:
      return UPDOWN_CLASSA;
    case kControlCheckBox:
      *style |= BS_AUTOCHECKBOX;
      return "BUTTON";
    case kControlComboList:
    case kControlFontBox:
      *style |= CBS_DROPDOWNLIST | WS_VSCROLL;
      return "COMBOBOX";
    case kControlListBoxList:
      *style |= LBS_NOTIFY | WS_VSCROLL;
      return "LISTBOX";
    case kControlMaterialButton:
      return kMaterialButtonClass;
    default:
      return "BUTTON";
  }
}

int IsListBox(HWND window) {
  return DialogControlKind(AsHandle(window)) == kControlListBoxList;
}

char PropertyName(int32_t timerId, char* name) {
  std::snprintf(name, 32, "GM5Timer%d", timerId);
  return name[0];
}

}  // namespace

WindowHandle DialogItem(WindowHandle dialog, int32_t id) {
  return dialog ? AsHandle(GetDlgItem(AsWindow(dialog), id)) : nullptr;
}

int32_t DialogItemId(WindowHandle control) {
  return control ? GetDlgCtrlID(AsWindow(control)) : 0;
}

void DialogShowItem(WindowHandle control, int show) {
  if (control) ShowWindow(AsWindow(control), show ? SW_SHOW : SW_HIDE);
}

int DialogItemVisible(WindowHandle control) {
  return control && (GetWindowLongPtrA(AsWindow(control), GWL_STYLE) & WS_VISIBLE) ? 1 : 0;
}

void DialogEnumChildren(WindowHandle dialog, DialogChildVisitor visit, void* param) {
  if (!dialog || !visit) return;
  EnumState state = {visit, param};
  EnumChildWindows(AsWindow(dialog), VisitChild, reinterpret_cast<LPARAM>(&state));
}

WindowHandle DialogCreate() {
  if (!RegisterDialogClass()) return nullptr;
  // Visible, since a hidden dialog ignores its controls' commands, but far off the screen.
  HWND window = CreateWindowExA(WS_EX_TOOLWINDOW, kDialogClass, "Glyph Motion #5",
                                WS_POPUP | WS_VISIBLE, -32000, -32000, 800, 600, nullptr, nullptr,
                                GetModuleHandleA(nullptr), nullptr);
  return AsHandle(window);
}

WindowHandle DialogAddControl(WindowHandle dialog, int32_t id, ControlKind kind, const char* text) {
  if (!dialog) return nullptr;
  DWORD style = 0;
  const char* windowClass = ClassFor(kind, &style);
  const int pickerSide = FindPickerShape(kind) ? kPickerGridSide : 40;
  HWND control = CreateWindowExA(
      0, windowClass, text ? text : "", style, 0, 0, pickerSide,
      kind == kControlComboList || kind == kControlFontBox ? 200 : pickerSide, AsWindow(dialog),
      reinterpret_cast<HMENU>(static_cast<intptr_t>(id)), GetModuleHandleA(nullptr), nullptr);
  if (!control) return nullptr;
  if (kind == kControlUpDown) SetWindowTextA(control, text ? text : "");
  DialogSetControlKind(AsHandle(control), kind);
  return AsHandle(control);
}

void DialogSetControlKind(WindowHandle handle, ControlKind kind) {
  HWND control = AsWindow(handle);
  if (!control) return;
  SetPropA(control, kKindProp, reinterpret_cast<HANDLE>(static_cast<intptr_t>(kind) + 1));
  WNDPROC procedure = ProcedureOf(kind);
  // A control keeps its first base procedure: subclassing twice would chain a class procedure
  // to another one.
  if (!procedure || GetPropA(control, kBaseProcProp)) return;
  const LONG_PTR base =
      SetWindowLongPtrA(control, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(procedure));
  SetPropA(control, kBaseProcProp, reinterpret_cast<HANDLE>(base));
}

void DialogDestroy(WindowHandle dialog) {
  if (dialog) DestroyWindow(AsWindow(dialog));
}

ControlKind DialogControlKind(WindowHandle control) {
  if (!control) return kControlOther;
  // A material button is a window class of its own.
  char windowClass[16] = "";
  GetClassNameA(AsWindow(control), windowClass, sizeof windowClass);
  if (lstrcmpiA(windowClass, kMaterialButtonClass) == 0) return kControlMaterialButton;
  // A value kind is known by its class procedure; the others by the mark made at creation.
  const WNDPROC procedure =
      reinterpret_cast<WNDPROC>(GetWindowLongPtrA(AsWindow(control), GWLP_WNDPROC));
  for (const KindClass& k : kKindProcedures)
    if (k.procedure == procedure) return k.kind;
  const intptr_t mark = reinterpret_cast<intptr_t>(GetPropA(AsWindow(control), kKindProp));
  return mark > 0 ? static_cast<ControlKind>(mark - 1) : kControlOther;
}

WindowHandle DialogParent(WindowHandle control) {
  return control ? AsHandle(GetParent(AsWindow(control))) : nullptr;
}

int DialogGetText(WindowHandle control, char* text, int size) {
  if (!text || size <= 0) return 0;
  text[0] = 0;
  return control ? GetWindowTextA(AsWindow(control), text, size) : 0;
}

void DialogSetText(WindowHandle control, const char* text) {
  if (control) SetWindowTextA(AsWindow(control), text ? text : "");
}

int DialogGetCheck(WindowHandle control) {
  return control && SendMessageA(AsWindow(control), BM_GETCHECK, 0, 0) ? 1 : 0;
}

void DialogSetCheck(WindowHandle control, int checked) {
  if (control)
    SendMessageA(AsWindow(control), BM_SETCHECK, checked ? BST_CHECKED : BST_UNCHECKED, 0);
}

void DialogAddRow(WindowHandle control, const char* text) {
  if (!control) return;
  SendMessageA(AsWindow(control), IsListBox(AsWindow(control)) ? LB_ADDSTRING : CB_ADDSTRING, 0,
               reinterpret_cast<LPARAM>(text ? text : ""));
}

void DialogClearRows(WindowHandle control) {
  if (control)
    SendMessageA(AsWindow(control),
                 IsListBox(AsWindow(control)) ? LB_RESETCONTENT : CB_RESETCONTENT, 0, 0);
}

int DialogRowCount(WindowHandle control) {
  if (!control) return 0;
  const LRESULT n = SendMessageA(AsWindow(control),
                                 IsListBox(AsWindow(control)) ? LB_GETCOUNT : CB_GETCOUNT, 0, 0);
  return n < 0 ? 0 : static_cast<int>(n);
}

int DialogGetSelection(WindowHandle control) {
  if (!control) return -1;
  return static_cast<int>(SendMessageA(
      AsWindow(control), IsListBox(AsWindow(control)) ? LB_GETCURSEL : CB_GETCURSEL, 0, 0));
}

void DialogSetSelection(WindowHandle control, int row) {
  if (control)
    SendMessageA(AsWindow(control), IsListBox(AsWindow(control)) ? LB_SETCURSEL : CB_SETCURSEL,
                 static_cast<WPARAM>(row), 0);
}

int DialogSelectString(WindowHandle control, const char* text) {
  if (!control || !text) return -1;
  return static_cast<int>(SendMessageA(
      AsWindow(control), IsListBox(AsWindow(control)) ? LB_SELECTSTRING : CB_SELECTSTRING,
      static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(text)));
}

void* DialogGetUserData(WindowHandle control) {
  return control ? reinterpret_cast<void*>(GetWindowLongPtrA(AsWindow(control), GWLP_USERDATA))
                 : nullptr;
}

void DialogSetUserData(WindowHandle control, void* data) {
  if (control)
    SetWindowLongPtrA(AsWindow(control), GWLP_USERDATA, reinterpret_cast<LONG_PTR>(data));
}

void DialogEnableItem(WindowHandle control, int enable) {
  if (control) EnableWindow(AsWindow(control), enable ? TRUE : FALSE);
}

int DialogItemEnabled(WindowHandle control) {
  return control && IsWindowEnabled(AsWindow(control)) ? 1 : 0;
}

// Windows can't be asked about a running timer, so the dialog keeps each period as a property.
void DialogSetTimer(WindowHandle dialog, int32_t timerId, uint32_t milliseconds) {
  if (!dialog) return;
  char name[32];
  PropertyName(timerId, name);
  SetTimer(AsWindow(dialog), static_cast<UINT_PTR>(timerId), milliseconds, nullptr);
  SetPropA(AsWindow(dialog), name,
           reinterpret_cast<HANDLE>(static_cast<uintptr_t>(milliseconds) + 1));
}

void DialogKillTimer(WindowHandle dialog, int32_t timerId) {
  if (!dialog) return;
  char name[32];
  PropertyName(timerId, name);
  KillTimer(AsWindow(dialog), static_cast<UINT_PTR>(timerId));
  RemovePropA(AsWindow(dialog), name);
}

uint32_t DialogTimerPeriod(WindowHandle dialog, int32_t timerId) {
  if (!dialog) return 0;
  char name[32];
  PropertyName(timerId, name);
  const uintptr_t stored = reinterpret_cast<uintptr_t>(GetPropA(AsWindow(dialog), name));
  return stored ? static_cast<uint32_t>(stored - 1) : 0;
}

void DialogPostMessage(WindowHandle dialog, uint32_t message) {
  if (dialog) PostMessageA(AsWindow(dialog), message, 0, 0);
}

uint32_t DialogTakePostedMessage(WindowHandle dialog) {
  MSG message;
  if (!dialog || !PeekMessageA(&message, AsWindow(dialog), WM_USER, 0x7FFF, PM_REMOVE)) return 0;
  return message.message;
}

void DialogPickerSetUp(WindowHandle picker, int32_t value, int32_t* saved) {
  if (picker)
    SendMessageA(AsWindow(picker), kMessagePickerSetUp, static_cast<WPARAM>(value),
                 reinterpret_cast<LPARAM>(saved));
}

void DialogPickerReadBack(WindowHandle picker) {
  if (picker) SendMessageA(AsWindow(picker), kMessagePickerReadBack, 0, 0);
}

void DialogPickerClick(WindowHandle picker, int x, int y) {
  if (!picker) return;
  HWND window = AsWindow(picker);
  SendMessageA(window, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(x, y));
  SendMessageA(window, WM_LBUTTONUP, 0, MAKELPARAM(x, y));
  // The release posted its command to the parent: deliver it now.
  MSG message;
  while (PeekMessageA(&message, GetParent(window), WM_COMMAND, WM_COMMAND, PM_REMOVE))
    DispatchMessageA(&message);
}

int DialogPickerValue(WindowHandle picker, int32_t* value) {
  return PickerValue(picker, value);
}

int DialogWriteLine(WindowHandle control, void* file) {
  return control ? static_cast<int>(SendMessageA(AsWindow(control), kMessageWriteLine, 0,
                                                 reinterpret_cast<LPARAM>(file)))
                 : 0;
}

int DialogReadLine(WindowHandle control, const char* line) {
  return control ? static_cast<int>(SendMessageA(AsWindow(control), kMessageReadLine, 0,
                                                 reinterpret_cast<LPARAM>(line)))
                 : 0;
}

void DialogNotify(WindowHandle dialog, int32_t id, int32_t notification) {
  if (dialog)
    SendMessageA(AsWindow(dialog), WM_COMMAND,
                 MAKEWPARAM(static_cast<WORD>(id), static_cast<WORD>(notification)),
                 reinterpret_cast<LPARAM>(GetDlgItem(AsWindow(dialog), id)));
}

int DialogPaintItem(WindowHandle dialog, const DRAWITEMSTRUCT* item) {
  if (!dialog || !item || DialogControlKind(AsHandle(item->hwndItem)) != kControlColourButton)
    return 0;
  PaintColourButton(AsWindow(dialog), item);
  return 1;
}

void SetUpDownRange(HWND updown, const char* text) {
  int min = 0, max = 0, initial = 0;
  if (!updown || std::sscanf(text, "%d,%d,%d", &min, &max, &initial) != 3) return;
  SendMessageA(updown, UDM_SETRANGE32, static_cast<WPARAM>(min), static_cast<LPARAM>(max));
  SendMessageA(updown, UDM_SETPOS32, 0, static_cast<LPARAM>(initial));
}
