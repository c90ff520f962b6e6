// The Matrix dialog (9981) on Windows: picks, adds and deletes the tiles of the current matrix
// group, and manages the groups.
#pragma once

#include "materials/tile.h"
#include "platform/dialog.h"

// Runs the dialog on a copy of `tile`. On OK (returns 1) a changed group is written, the old image
// of `tile` is freed and the copy, holding the picked tile, replaces it; on Cancel (0) `tile` is
// as it was.
int RunMatrixDialog(WindowHandle owner, TileRef* tile);
