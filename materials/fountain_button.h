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
#include "platform/memory.h"

constexpr const char kFountainLineKey[] = "FOUNTB";
constexpr uint32_t kFountainOwnFile = 1;  // flags: the button loads and saves its own file

// The button's messages. Creation takes kFountainUseFile in wParam to start from the button's
// file, and a FountainGradient to copy (or null) in lParam. Choosing a colour takes a marker
// index or one of the two ends; adding takes a position; deleting and adjusting take a marker
// index; the two menus take a POINT on the screen in lParam.
constexpr uint32_t kMessageFountainCreate = 0x52C;
constexpr uint32_t kFountainUseFile = 0x1000;
constexpr uint32_t kMessageFountainChooseColour = 0x59A;
constexpr uint32_t kMessageFountainAddMarker = 0x59B;
constexpr uint32_t kMessageFountainDeleteMarker = 0x59C;
constexpr uint32_t kMessageFountainAdjustMarker = 0x59D;
constexpr uint32_t kMessageFountainMarkerMenu = 0x59E;
constexpr uint32_t kMessageFountainLibraryMenu = 0x59F;
// A window caption holding this makes a looped button.
constexpr const char kFountainLoopedCaption[] = "FountainButtonLooped";

// A new 585-byte record for button `controlId`: read from its file when `useFile` is set and
// Shift is not held; failing that (or otherwise) a copy of `copy`, or else the seven-colour set.
// `looped` sets the looped flag, `useFile` the own-file flag. Null when memory fails.
MovableHandle MakeFountainRecord(int32_t controlId, int useFile, int shiftHeld,
                                 const FountainGradient* copy, int looped);

// What a living button keeps in its record besides the gradient: the cached strip picture (in the
// name span, past the 260 characters a name may have) and the pointer's marker and drag (in the
// spare span). None of it is written anywhere.
struct FountainRunTime {
  MovableHandle strip;
  int32_t hotMarker;   // marker index under the pointer or being dragged, -1 for none
  int32_t dragging;    // 1 while a marker is dragged
  int32_t dragStartX;  // the pointer's x when the drag began
  int32_t dragLastX;   // the ghost's centre now: the pointer's x held within the strip
};
void GetFountainRunTime(const FountainGradient* gradient, FountainRunTime* state);
void SetFountainRunTime(FountainGradient* gradient, const FountainRunTime* state);

int FountainFilePath(int32_t controlId, char* path, size_t size);
int ReadFountainFile(const char* path, FountainGradient* gradient);
// A short write deletes the file. 1 or 0.
int WriteFountainFile(const char* path, const FountainGradient* gradient);

std::string FountainDocumentLine(int32_t controlId, const FountainGradient* gradient);
// Replaces `gradient` from a line starting with "FOUNTB"; the text after "=" (skipping "=" and
// blanks) is the record in hex. 0 and `gradient` untouched for any other line.
int ReadFountainDocumentLine(const char* line, FountainGradient* gradient);

// Clears the spans that hold the button's run-time state (strip handle, pointer, drag): the name
// past its 260 characters and terminator, and the spare bytes.
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
