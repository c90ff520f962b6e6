// The dialog port: what core code may ask of a dialog and its controls. On Windows a WindowHandle
// is an HWND; elsewhere it is a control of the headless dialog model, which holds the same control
// kinds and values without a window system. Controls are found by id, as in a dialog resource.
#pragma once

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
