// The animation picker on Windows, window class "ANMCTL": a control that owns its picker state
// through its user data, carries the "Select..." button along its bottom, shows the held
// animation's first frame above the strip with the file's path, and answers the picker's messages
// (1224 create and bind, 1225 frames, 1334 and 1335 document lines).
#pragma once

constexpr char kAnimationPickerClass[] = "ANMCTL";

// Registers the window class (a global class of the module holding this code), once; nonzero when
// the class is there.
int RegisterAnimationPickerClass();
// Removes the class again, once no picker is left; a library must do so before it is unloaded.
void UnregisterAnimationPickerClass();
