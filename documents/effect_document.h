// Effect documents (.gm5): the state of every control of the main dialog and all pages as text,
// one line per control that answers, keyed by control id. The shell doesn't know what a line means:
// each control writes and takes its own (controls/value_controls.h).
#pragma once

#include "platform/dialog.h"

// The messages the two operations can show.
inline constexpr const char kDocumentCreateError[] =
    "There has been an error creating the requested file.";
inline constexpr const char kDocumentOpenError[] =
    "There has been an error opening the requested file.";
inline constexpr const char kDocumentDamaged[] = "This file has been damaged.";

// Writes every child of `dialog` that has a line, in child order, after keeping the old file as
// "<path>.bak". Returns 1, or 0 after showing kDocumentCreateError.
int SaveDocument(WindowHandle dialog, const char* path);
// The writing of SaveDocument into an open file, for callers that place the bytes themselves.
// Returns 0 when the stream reports an error.
int SaveDocumentTo(WindowHandle dialog, void* file);
// Hands each line of the document to the control with its id, then posts message 1224 to the
// dialog. A file that can't be opened, or whose first line lacks the marks, changes nothing and
// shows its message.
void LoadDocument(WindowHandle dialog, const char* path);
// The reading of an open file, for LoadDocument and the fuzz target: returns 0, having changed
// nothing, when the first line lacks the marks, else 1 after handing on every line.
int LoadDocumentFrom(WindowHandle dialog, void* file);

// How the two show a message: ShowMessage's modal box unless replaced (null puts it back).
typedef void (*DocumentMessageShower)(WindowHandle window, const char* text);
void SetDocumentMessageShower(DocumentMessageShower shower);
