// The material button on Windows, window class "MATLBT": a button that owns a Material through
// its user data, paints the fill's preview with the arrow of its kind menu on the right, opens the
// kind's editor and keeps the record in its own file from one run to the next.
#pragma once

#include <windows.h>

#include <cstdint>

#include "platform/dialog.h"

constexpr char kMaterialButtonClass[] = "MATLBT";

// Registers the window class (a global class of the module holding this code), once; the plug-in
// calls it before its dialog opens, tests before they make buttons. Returns nonzero when the
// class is there.
int RegisterMaterialButtonClass();
// Removes the class again, once no button is left; a library must do so before it is unloaded.
void UnregisterMaterialButtonClass();
// The window's own creation of its record (message 0x590), which first looks for the record kept
// in the button's file; nonzero when the button holds a record afterwards.
int CreateMaterialForWindow(WindowHandle button, uint32_t creationColour);
