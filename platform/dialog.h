// The dialog port: what core code may ask of a dialog and its controls. On Windows a WindowHandle
// is an HWND; elsewhere it is a control of the headless dialog model, which holds the same control
// kinds and values without a window system. Controls are found by id, as in a dialog resource.
#pragma once

#include <cstddef>
#include <cstdint>

struct DialogWindow;
typedef DialogWindow* WindowHandle;

// The control with `id` among the dialog's children, or null.
WindowHandle DialogItem(WindowHandle dialog, int32_t id);
// The control's id, 0 for a null handle.
int32_t DialogItemId(WindowHandle control);
// Shows or hides a control.
void DialogShowItem(WindowHandle control, int show);
// Nonzero when the control is marked visible (its own flag, not its parent's).
int DialogItemVisible(WindowHandle control);

// Calls `visit` for each child of the dialog in creation order until it returns 0.
typedef int (*DialogChildVisitor)(WindowHandle child, void* param);
void DialogEnumChildren(WindowHandle dialog, DialogChildVisitor visit, void* param);

// Values, kinds and messages. Every control has a kind. On Windows the kind is told by the
// control's window procedure (each value kind has its own class procedure); the headless model
// keeps it in the record.

enum ControlKind : int32_t {
  kControlOther = 0,       // anything without a value: push buttons, the logo, the sample
  kControlLabel,           // static text
  kControlColourButton,    // owner-drawn button; the window text is the colour in decimal
  kControlSpinEdit,        // edit with an updown partner at id + 10000
  kControlSignedSpinEdit,  // the same with a signed range; the setting is a text buffer
  kControlUpDown,          // the partner: its window text is "min,max,default"
  kControlCheckBox,
  kControlTextField,        // single-line edit
  kControlComboList,        // drop-down list; the value is the selected row
  kControlListBoxList,      // list box; the value is the selected row
  kControlFontBox,          // combo box of font names; the value is the text
  kControlShadowPicker,     // eight-way direction picker, tag SDWDIR
  kControlScroll4Picker,    // four-way scroll picker, tag SCRL4D
  kControlScroll2Picker,    // two-way scroll picker, tag SCRL2D
  kControlScrollHVPicker,   // horizontal-or-vertical picker, tag SCRLHV
  kControlMaterialButton,   // filled by the materials; lines MATLBT
  kControlFountainButton,   // filled by the gradients; lines FOUNTB
  kControlAnimationPicker,  // filled by the animation picker; lines ANMCTL
  kControlKindCount
};

// Private messages of the dialog and its controls.
constexpr uint32_t kMessageAfterLoad = 1224;
constexpr uint32_t kMessagePickerSetUp = 1324;
constexpr uint32_t kMessagePickerReadBack = 1326;
constexpr uint32_t kMessageRepaintSample = 1327;
constexpr uint32_t kMessageWriteLine = 1334;
constexpr uint32_t kMessageReadLine = 1335;
// Room for the longest document line a control writes (a 1282-byte record in hex, its word, id
// and "="; a text is cut to 1024 characters).
constexpr size_t kControlLineSize = 2564 + 64;

// What each kind does is described above the port, once, as a row of procedures; the port
// consults the rows and knows no kind's behaviour itself. A null entry means the kind has no such
// behaviour. The Windows entries are null elsewhere.
struct ControlKindProcs {
  ControlKind kind;
  const char* tag;  // the six-letter word of its document line, or null
  // Makes what the control owns (a material record from a creation colour). Nonzero when the
  // control holds it afterwards.
  int (*create)(WindowHandle control, uint32_t creationColour);
  // Pickers: set-up with a value and the setting to mirror, read-back from the window text, a
  // press at (x, y) (answers the cells to repaint) and the held value (0 when none).
  int (*setUp)(WindowHandle control, int32_t value, int32_t* saved);
  void (*readBack)(WindowHandle control);
  uint32_t (*press)(WindowHandle control, int32_t x, int32_t y);
  int (*value)(WindowHandle control, int32_t* value);
  // Document lines: take one (1 when taken), format one without the line feed (its length, 0
  // for none).
  int (*takeLine)(WindowHandle control, const char* line);
  size_t (*formatLine)(WindowHandle control, char* line, size_t size);
  // Frees what the control owns when its dialog goes.
  void (*destroy)(WindowHandle control);
  // Windows: the window class new controls of the kind are made with when it is one of the
  // kind's own, the class procedure that gives an existing control the kind (a WNDPROC), and the
  // painting of an owner-drawn control from its DRAWITEMSTRUCT (nonzero when painted).
  const char* windowClass;
  void* procedure;
  int (*drawItem)(WindowHandle dialog, const void* drawItem);
};

// A control's notification to its dialog (a command on Windows).
typedef void (*DialogCommandProc)(WindowHandle dialog, int32_t id, int32_t notification);
// Where there are no dialog resources: makes the controls of page `resourceId` in `dialog`.
typedef int (*DialogPageMaker)(WindowHandle dialog, int32_t resourceId);

struct DialogBehaviour {
  const ControlKindProcs* kinds;
  int32_t kindCount;
  DialogCommandProc command;
  DialogPageMaker makePage;
};

// Gives the port the kinds' rows and the dialogs' command handling. The record must outlive every
// dialog; installing again replaces it.
void DialogInstallBehaviour(const DialogBehaviour* behaviour);
const DialogBehaviour* DialogInstalledBehaviour();
// The row of `kind`, or null when it has none.
const ControlKindProcs* DialogKindProcs(ControlKind kind);

// Makes a control in a dialog made by DialogCreate. Ids need not be unique in the port, but the
// dialog finds the first control with an id. `text` is the caption or initial text.
WindowHandle DialogCreate();
WindowHandle DialogAddControl(WindowHandle dialog, int32_t id, ControlKind kind, const char* text);
// Gives an existing control (one of a dialog resource) the behaviour of `kind`: on Windows it is
// subclassed with the kind's class procedure, which from then on marks its kind.
void DialogSetControlKind(WindowHandle control, ControlKind kind);
// Destroys a dialog made by DialogCreate with all its controls. A null handle is accepted.
void DialogDestroy(WindowHandle dialog);
// Makes the controls of the page dialog `resourceId` again in `dialog`, hidden, with their ids,
// texts and places: on Windows as twins of the resource's children, elsewhere from the page
// tables. Returns 0 when the page can't be made.
int DialogClonePage(WindowHandle dialog, int32_t resourceId);
// Gives a material button its record, made from `creationColour` (message 0x590). The button
// owns the record from then on and frees it when it is destroyed. Returns 0 when the button has
// no record afterwards.
int DialogCreateMaterial(WindowHandle button, uint32_t creationColour);

ControlKind DialogControlKind(WindowHandle control);
// The window text, cut to fit `size` (which counts the terminator). Returns its length.
int DialogGetText(WindowHandle control, char* text, int size);
// The length of the window text, without the terminator; 0 without a control.
int DialogGetTextLength(WindowHandle control);
void DialogSetText(WindowHandle control, const char* text);
// The check state of a check box, 0 or 1, and its setting.
int DialogGetCheck(WindowHandle control);
void DialogSetCheck(WindowHandle control, int checked);
// Lists (combo box, list box, font box): the rows, the selected row (-1 for none) and selecting
// by the first row that starts with `text`, ignoring case (returns the row or -1).
void DialogAddRow(WindowHandle control, const char* text);
void DialogClearRows(WindowHandle control);
int DialogRowCount(WindowHandle control);
int DialogGetSelection(WindowHandle control);
void DialogSetSelection(WindowHandle control, int row);
int DialogSelectString(WindowHandle control, const char* text);
// The control's user data: the address of the setting it mirrors, or null.
void* DialogGetUserData(WindowHandle control);
void DialogSetUserData(WindowHandle control, void* data);
void DialogEnableItem(WindowHandle control, int enable);
int DialogItemEnabled(WindowHandle control);

// The dialog's update timer (id 15). Setting it again replaces a running one.
constexpr int32_t kUpdateTimerId = 15;
void DialogSetTimer(WindowHandle dialog, int32_t timerId, uint32_t milliseconds);
void DialogKillTimer(WindowHandle dialog, int32_t timerId);

// Direction pickers: set-up with the initial value and the setting to mirror (message 1324), the
// read-back from the window text (1326), and a click at (x, y) in the 75 by 75 grid, which selects
// and then notifies the parent as the mouse does.
void DialogPickerSetUp(WindowHandle picker, int32_t value, int32_t* saved);
void DialogPickerReadBack(WindowHandle picker);
void DialogPickerClick(WindowHandle picker, int x, int y);
// The picker's held value; returns 0 when it has none (not set up).
int DialogPickerValue(WindowHandle picker, int32_t* value);

// Document lines: asks a control to write its line to `file` (message 1334), or to take `line`
// (message 1335). A control that has no line answers 0 and writes nothing.
int DialogWriteLine(WindowHandle control, void* file);
int DialogReadLine(WindowHandle control, const char* line);
// Delivers a command from a control to its dialog, as a control's notification does.
void DialogNotify(WindowHandle dialog, int32_t id, int32_t notification);
// Posts a private message to the dialog's own procedure (1224 after a document load).
void DialogPostMessage(WindowHandle dialog, uint32_t message);
// The dialog a control belongs to, or null.
WindowHandle DialogParent(WindowHandle control);
// Test and renderer hooks: the period of a running timer (0 when none), and the oldest private
// message posted to the dialog and not yet taken (0 when none).
uint32_t DialogTimerPeriod(WindowHandle dialog, int32_t timerId);
uint32_t DialogTakePostedMessage(WindowHandle dialog);
