// What the Windows dialog port offers beyond the shared dialog interface: painting its
// owner-drawn value controls for dialogs whose own procedure receives WM_DRAWITEM, and giving an
// updown the range its resource text names.
#pragma once

#include <windows.h>

#include "platform/dialog.h"

// Paints an owner-drawn value control of the dialog (a colour button) from its WM_DRAWITEM
// record. 0 when the control is not one the port paints.
int DialogPaintItem(WindowHandle dialog, const DRAWITEMSTRUCT* drawItem);

// What a kind's class procedure passes on: the procedure of the standard class the control was
// subclassed from. It also drops the port's marks when the window goes (WM_NCDESTROY).
LRESULT DialogCallBase(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

// Gives an updown the range and position of its text, "min,max,initial", with the 16-bit range
// and position messages (max in the low word, min in the high); other text changes nothing.
void SetUpDownRange(HWND updown, const char* text);
