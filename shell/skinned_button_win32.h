// The plug-in's own look of push buttons, used when the host's SoftButtons setting is on: the
// button becomes owner-drawn (style 11) and a subclass paints it, raised or pressed, with its
// caption. Only the look changes; values and messages stay the button's.
#pragma once

#include <windows.h>

// Skins the button when SoftButtons is on; otherwise leaves it as it is. Skinning twice changes
// nothing more.
void SkinButton(HWND button);
