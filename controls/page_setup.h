// Making a dialog's controls from the tables and tying them to their settings: the main dialog's
// own controls, then the pages of all effects in the order of the effect table's rows. Labels
// come only with page controls (at id + 1); spin edits get their updown at id + 10000.
#pragma once

#include <cstdint>

#include "controls/page_tables.h"
#include "platform/dialog.h"

// Gives the dialog port the control kinds' rows and the dialogs' command handling, and registers
// the window classes of kinds that have their own. Every function here does so first; programs
// and tests that make controls on the port directly call it before.
void InstallControlKinds();
// The controls of page dialog `resourceId` made from its page table, hidden, as the dialog port
// makes pages where there are no dialog resources. Returns 0 when the page can't be made.
int MakeTablePage(WindowHandle dialog, int32_t resourceId);

// Adds the controls of one table to `dialog`. Returns 0 when a control can't be made.
int AddTableControls(WindowHandle dialog, const PageTable& table, int withLabels);
// Adds the main dialog's controls and every page's. Returns 0 on failure.
int AddAllDialogControls(WindowHandle dialog);
// Sets a table's controls from their settings and binds them, in table order; controls without a
// setting take the table's initial values (range default, colour, check state).
void SetUpTableControls(WindowHandle dialog, const PageTable& table);
// Gives the controls of a page made from its resource their kinds (labels and updowns included),
// list rows, values from the settings and material records from their creation colours. Controls
// whose window class may be missing (material, fountain and animation controls) may be absent;
// any other missing control, or a picker block or material record that can't be made, returns 0.
int SetUpPageTwins(WindowHandle dialog, const PageTable& table);
// The same for the main dialog and all pages: fills the Effect box with the effect names first.
void SetUpAllDialogControls(WindowHandle dialog);
// A dialog holding every control, set from the settings; null on failure. Free with DialogDestroy.
WindowHandle CreateValueDialog();
