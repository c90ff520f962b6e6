// The material button on Windows, window class "MATLBT": a button that owns a Material through
// its user data, paints the fill's preview with the arrow of its kind menu on the right, opens the
// kind's editor and keeps the record in its own file from one run to the next.
#pragma once

constexpr char kMaterialButtonClass[] = "MATLBT";

// Registers the window class (a global class of the module holding this code), once; the plug-in
// calls it before its dialog opens, tests before they make buttons. Returns nonzero when the
// class is there.
int RegisterMaterialButtonClass();
// Removes the class again, once no button is left; a library must do so before it is unloaded.
void UnregisterMaterialButtonClass();
