// The fountain button's record on disk and in documents: its own file "Fountain%05.5d.mtrl" in
// the data folder (the 585 bytes of the record) and its "FOUNTB<id>=<hex>" document line. The
// run-time fields the button keeps in the record's spare spans are cleared whenever a record
// comes in from outside.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "materials/gradient.h"
#include "platform/dialog.h"

constexpr const char kFountainLineKey[] = "FOUNTB";
constexpr uint32_t kFountainOwnFile = 1;  // flags: the button loads and saves its own file

int FountainFilePath(int32_t controlId, char* path, size_t size);
int ReadFountainFile(const char* path, FountainGradient* gradient);
// A short write deletes the file. 1 or 0.
int WriteFountainFile(const char* path, const FountainGradient* gradient);

std::string FountainDocumentLine(int32_t controlId, const FountainGradient* gradient);
// Replaces `gradient` from a line starting with "FOUNTB"; the text after "=" (skipping "=" and
// blanks) is the record in hex. 0 and `gradient` untouched for any other line.
int ReadFountainDocumentLine(const char* line, FountainGradient* gradient);

// Clears the spans that hold the button's run-time state (strip handle, pointer, drag).
void ClearFountainRunTime(FountainGradient* gradient);

// The headless button's row procedures: its record (a 585-byte block in the control's user
// data, the seven-colour set to start), its document line both ways, and freeing the record.
int CreateFountainForButton(WindowHandle button, uint32_t creationColour);
int FountainButtonTakeLine(WindowHandle button, const char* line);
size_t FountainButtonFormatLine(WindowHandle button, char* line, size_t size);
void FreeFountainOfButton(WindowHandle button);

// The gradient a fountain button holds, copied with its run-time spans cleared. 0 when `button` is
// not a fountain button or holds no record, and `gradient` is then untouched.
int ButtonFountain(WindowHandle button, FountainGradient* gradient);
