// The headless dialog model: dialogs and controls as records in memory, for programs and tests that
// run without a window system. A dialog owns its controls; destroying it frees them all, with the
// blocks of pickers and material buttons. Controls keep their creation order, which is the order
// DialogEnumChildren visits them in. DialogCreate and DialogAddControl make fully typed controls.
#pragma once

#include <cstdint>

#include "platform/dialog.h"

// A new, empty dialog, or null.
WindowHandle HeadlessDialogCreate();
// Adds a control with `id` and no value kind, hidden unless `visible`, and returns it, or null.
WindowHandle HeadlessDialogAddControl(WindowHandle dialog, int32_t id, int visible);
// Frees the dialog and all its controls, with the blocks of its pickers and material buttons. A
// null handle is accepted.
void HeadlessDialogDestroy(WindowHandle dialog);
