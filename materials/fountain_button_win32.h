// The fountain button on Windows, window class "FOUNTB": a strip showing a multi-colour gradient
// with triangles above it for its two ends and its markers, edited with the mouse (add, move,
// recolour, delete), with a menu of its own and one for the shared gradient library. The window
// owns its record through its user data and, when it keeps its own file, saves it there when it
// is destroyed.
#pragma once

#include <windows.h>

#include <cstdint>

#include "platform/dialog.h"

constexpr char kFountainButtonClass[] = "FOUNTB";

// Registers the window class (a global class of the module holding this code), once; nonzero when
// the class is there.
int RegisterFountainButtonClass();
// Removes the class again, once no button is left.
void UnregisterFountainButtonClass();
// The window's own creation of its record from its file (message 0x52C with the file flag);
// nonzero when the button holds a record afterwards.
int CreateFountainForWindow(WindowHandle button, uint32_t creationColour);
