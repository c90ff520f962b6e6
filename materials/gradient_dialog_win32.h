// The gradient editors on Windows: the Gradient dialog (9995), which edits a GradientSpec and
// the multi-colour gradient around a fountain button; the Marker Position dialog (9996); and the
// Gradient Library dialog (9997), which lists the shared library's gradients as strips.
#pragma once

#include <cstdint>

#include "materials/gradient.h"
#include "platform/dialog.h"

// Runs the Gradient dialog over copies of `spec` and `fountain`; on OK both are replaced and 1 is
// returned, on Cancel (or when the dialog can't open) nothing changes and 0 is returned.
int RunGradientDialog(WindowHandle owner, GradientSpec* spec, FountainGradient* fountain);

// Asks for a marker position from 1 to 255, starting at `*position`. 1 with the new position.
int RunMarkerPositionDialog(WindowHandle owner, int32_t* position);

// Runs the Gradient Library dialog. On OK the library file is rewritten with the entries left in
// the list and the selected entry's colours and markers go into `gradient` (its name and flags
// stay). Failures are shown to the user. 1 when `gradient` changed.
int RunGradientLibraryDialog(WindowHandle owner, FountainGradient* gradient);
