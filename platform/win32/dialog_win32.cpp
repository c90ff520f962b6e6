// The dialog port on real windows: a WindowHandle is an HWND. A control gets its kind from the
// kind's installed row: standard controls are subclassed with the row's class procedure, which is
// then the mark of the kind, and kinds with a window class of their own are known by the class.
// The port routes document, picker and paint requests to the controls' windows and rows; it knows
// no kind's behaviour itself.
#include <windows.h>
#include <commctrl.h>

#include <cstdio>
#include <string>

#include "platform/dialog.h"
#include "platform/win32/dialog_win32.h"

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

WNDPROC ProcedureOf(ControlKind kind) {
  const ControlKindProcs* row = DialogKindProcs(kind);
  return row ? reinterpret_cast<WNDPROC>(row->procedure) : nullptr;
}

// The side of a new picker: its 75 by 75 grid of cells.
constexpr int kPickerSide = 75;

// ---- The dialog's own window
// ---------------------------------------------------------------------

LRESULT CALLBACK DialogProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_COMMAND: {
      const DialogBehaviour* behaviour = DialogInstalledBehaviour();
      if (behaviour && behaviour->command)
        behaviour->command(AsHandle(window), LOWORD(wParam), HIWORD(wParam));
      return 0;
    }
    case WM_DRAWITEM:
      return DialogPaintItem(AsHandle(window), reinterpret_cast<const DRAWITEMSTRUCT*>(lParam))
                 ? TRUE
                 : FALSE;
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
  if (registered) return 1;
  INITCOMMONCONTROLSEX controls = {sizeof controls, ICC_UPDOWN_CLASS};
  InitCommonControlsEx(&controls);
  WNDCLASSA c = {};
  c.lpfnWndProc = DialogProc;
  c.hInstance = GetModuleHandleA(nullptr);
  c.hbrBackground = GetSysColorBrush(COLOR_BTNFACE);
  c.lpszClassName = kDialogClass;
  c.hCursor = LoadCursor(nullptr, IDC_ARROW);
  registered = RegisterClassA(&c) != 0 || GetLastError() == ERROR_CLASS_ALREADY_EXISTS;
  return registered;
}

const char* ClassFor(ControlKind kind, DWORD* style) {
  *style = WS_CHILD | WS_VISIBLE;
  const ControlKindProcs* row = DialogKindProcs(kind);
  if (row && row->windowClass) return row->windowClass;
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
  const ControlKindProcs* row = DialogKindProcs(kind);
  const int pickerSide = row && row->press ? kPickerSide : 40;
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
  // A kind with a window class of its own is known by the class, a subclassed one by its class
  // procedure, the others by the mark made at creation.
  char windowClass[64] = "";
  GetClassNameA(AsWindow(control), windowClass, sizeof windowClass);
  const void* procedure =
      reinterpret_cast<const void*>(GetWindowLongPtrA(AsWindow(control), GWLP_WNDPROC));
  if (const DialogBehaviour* behaviour = DialogInstalledBehaviour()) {
    for (int32_t i = 0; i < behaviour->kindCount; ++i) {
      const ControlKindProcs& row = behaviour->kinds[i];
      if ((row.windowClass && lstrcmpiA(windowClass, row.windowClass) == 0) ||
          (row.procedure && row.procedure == procedure))
        return row.kind;
    }
  }
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

int DialogGetTextLength(WindowHandle control) {
  return control ? GetWindowTextLengthA(AsWindow(control)) : 0;
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
  if (!dialog || !item) return 0;
  const ControlKindProcs* row = DialogKindProcs(DialogControlKind(AsHandle(item->hwndItem)));
  return row && row->drawItem ? row->drawItem(dialog, item) : 0;
}

LRESULT DialogCallBase(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  WNDPROC base = reinterpret_cast<WNDPROC>(GetPropA(window, kBaseProcProp));
  const LRESULT result = base ? CallWindowProcA(base, window, message, wParam, lParam)
                              : DefWindowProcA(window, message, wParam, lParam);
  if (message == WM_NCDESTROY) {
    RemovePropA(window, kBaseProcProp);
    RemovePropA(window, kKindProp);
  }
  return result;
}

void SetUpDownRange(HWND updown, const char* text) {
  int min = 0, max = 0, initial = 0;
  if (!updown || std::sscanf(text, "%d,%d,%d", &min, &max, &initial) != 3) return;
  SendMessageA(updown, UDM_SETRANGE, 0, MAKELPARAM(max, min));
  SendMessageA(updown, UDM_SETPOS, 0, MAKELPARAM(initial, 0));
}
