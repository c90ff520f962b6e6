// Drives the plug-in's dialogs from the lines of a script, for the reference host. Steps run one
// at a time from a timer on the dialog's own thread, so the dialogs see ordinary messages:
//   wait-dialog | box ANSWER | click ID | click-child ID CHILD | set-text ID TEXT |
//   set-check ID 0|1 | select ID ROW | select-text ID TEXT | select-list ID ROW |
//   post-command ID COMMAND | wait-caption TEXT |
//   read-text ID | read-check ID | read-enabled ID | read-class ID | wait-timer | sleep MS |
//   watch | timeout MS | count-paints ID | read-paints ID | screenshot 0 PATH | file-dialog PATH
// (count-paints starts counting a control's WM_PAINT messages from 0 and read-paints logs the
// count; select-list picks a row of a list box as a click does; post-command posts WM_COMMAND
// COMMAND to the control ID itself, as its own menu does; wait-caption waits for the active dialog
// to have the caption TEXT; screenshot saves the dialog as PNG; file-dialog types PATH into
// the open common file dialog and presses OK; watch logs the library's live GDI objects and GDI+
// sessions, see host/import_watch.h). A step that waits gives up after a timeout (20 s, or `timeout
// MS` for the steps after it): the driver logs it and cancels every open dialog.
#pragma once

#include <string>
#include <vector>

#include "host/host_session.h"

// Starts running `steps` on the calling thread, logging to the session. Returns 0 when the timer
// cannot be set.
int StartDialogDriver(HostSession* session, const std::vector<std::string>& steps);
// Stops the driver; returns the number of steps that did not run (0 when the script finished).
int StopDialogDriver();
