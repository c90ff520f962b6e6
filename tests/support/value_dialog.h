// Helpers for tests of the value controls and documents: a full dialog made from the tables, a
// deterministic change of every control's value, and the dialog's state as text for comparison.
#pragma once

#include <string>
#include <vector>

#include "platform/dialog.h"

// Fills the font box with a few names, since no font enumeration runs in tests.
void AddTestFonts(WindowHandle dialog);
// Gives every value control of the dialog a new value derived from `seed`, inside its range, and
// stores it through the control's setting as a user's change would.
void ChangeEveryControl(WindowHandle dialog, int seed);
// One line per value control: its document line, and for pickers the held value too.
std::vector<std::string> DialogState(WindowHandle dialog);
// A fresh folder under the system's temporary folder, ending in a separator.
std::string MakeTempFolder(const char* name);
