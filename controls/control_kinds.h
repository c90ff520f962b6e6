// The control kinds, each described once as a row of procedures (platform/dialog.h): its document
// word, the making and freeing of what it owns, its set-up and read-back, its lines, and on
// Windows its window class, class procedure and painting. Page code and both dialog ports consult
// these rows; a kind's behaviour lives in its own file of controls/ (or materials/) and, where it
// has a window, the `_win32.cpp` file beside it.
#pragma once

#include <cstdint>
#include <cstdio>

#include "platform/dialog.h"

// The rows, Windows parts included where the platform has windows; made once.
const ControlKindProcs* ControlKindRows(int32_t* count);

// Adds the Windows parts to a row (its class, procedure and painting, and the creation of
// records that a window makes itself); leaves the row as it is elsewhere.
void AddKindWindowParts(ControlKindProcs* row);

// Registers the window classes that kinds of their own need (nonzero when they are there).
int RegisterKindWindowClasses();

// Windows parts of the kinds in controls/: the value kinds' and the pickers' class procedures
// (WNDPROCs, null for other kinds), the colour button's painting from its DRAWITEMSTRUCT, and the
// document line a control writes to `file` for message 1334 (1 when written).
void* ValueKindProcedure(ControlKind kind);
void* PickerKindProcedure(ControlKind kind);
int PaintColourButton(WindowHandle dialog, const void* drawItem);
int WriteControlLine(WindowHandle control, std::FILE* file);
