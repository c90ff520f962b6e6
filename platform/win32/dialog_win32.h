// What the Windows dialog port offers beyond the shared dialog interface: painting its
// owner-drawn value controls for dialogs whose own procedure receives WM_DRAWITEM, and giving an
// updown the range its resource text names.
#pragma once

#include <windows.h>

#include "platform/dialog.h"

// Paints an owner-drawn value control of the dialog (a colour button) from its WM_DRAWITEM
// record. 0 when the control is not one the port paints.
int DialogPaintItem(WindowHandle dialog, const DRAWITEMSTRUCT* drawItem);

// Gives an updown the range and position of its text, "min,max,initial"; other text changes
// nothing.
void SetUpDownRange(HWND updown, const char* text);
