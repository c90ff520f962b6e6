// The value controls: how each kind holds its value, reads it clamped, stores it through the
// setting address in its user data, and writes and takes its line of an effect document. Written
// once on the dialog port, so the Windows class procedures and the headless model behave alike.
// Spin edits take their range from the updown partner at id + 10000 ("min,max,default").
#pragma once

#include <cstddef>
#include <cstdint>

#include "controls/item_text.h"
#include "platform/dialog.h"

constexpr int32_t kUpDownIdOffset = 10000;
constexpr int32_t kFirstTimedId = 50;  // changes to ids from here on restart the update timer
constexpr int32_t kBuildButtonId = 1;
constexpr int32_t kTextFieldId = 52;
constexpr int32_t kComboSelectionChanged = 8;  // CBN_SELCHANGE
constexpr size_t kDocumentTextLimit = 1024;    // a text line is cut to this on writing
constexpr size_t kDocumentLineLimit = 8192;    // a document line is read up to this, terminator in

// The six-letter word that starts a kind's document line (its row's), or null for kinds without
// lines.
const char* ControlTag(ControlKind kind);

// The range of a spin edit: min 0 and max 100 unless the updown's text scans as "%d,%d,%d"; a scan
// that stops early keeps what it read so far.
struct SpinRange {
  int32_t min;
  int32_t max;
  int32_t initial;
};
SpinRange ParseSpinRange(const char* text);
// The value of spin edit `id`, clamped to its updown's range.
int32_t ReadDlgValue(WindowHandle dialog, int32_t id);

// Copies a control's value into the setting its user data points to (nothing without one).
void StoreControlValue(WindowHandle control);
// Sets a control from the setting at `setting` and ties the two together. Pickers are set up with
// the value and mirror the setting from then on.
void BindControl(WindowHandle control, void* setting);

// The document line of a control, as written by message 1334, without the line feed. Returns the
// length, or 0 for a control with no line (the buffer then holds an empty string).
size_t FormatControlLine(WindowHandle control, char* line, size_t size);
// Takes a document line as message 1335 does: the word must be the kind's, then "=" and the value.
// Sets the control and stores through its user data. Returns 1 when the line was taken.
int TakeControlLine(WindowHandle control, const char* line);
// The two for the value kinds themselves (colour buttons, spin edits, check boxes, text fields,
// lists and font boxes), as their rows give them.
size_t FormatValueLine(WindowHandle control, char* line, size_t size);
int TakeValueLine(WindowHandle control, const char* line);

// A command from control `id`: stores its value as its kind says and restarts the update timer
// for ids of 50 and above. Ignored while the dialog is hidden.
void HandleValueCommand(WindowHandle dialog, int32_t id, int32_t notification);

// The colour chooser behind colour buttons: given the current colour, the owner and the swatch
// table (BuildSwatchTable), returns nonzero with the chosen colour, or 0 when the user cancelled.
// The host's HostOpChooseColour unless replaced; null puts it back.
typedef int (*ColourChooser)(WindowHandle owner, uint32_t* colour, const uint8_t* swatches);
void SetColourChooser(ColourChooser chooser);
// Offers the current chooser the swatch table with `*colour`; nonzero with the choice.
int ChooseColour(WindowHandle owner, uint32_t* colour);
