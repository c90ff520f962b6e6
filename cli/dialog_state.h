// The main dialog that gm5 runs the engine on: every control, set from the settings, then the
// command line's options applied to their controls, each through the control's own document line
// so that it is checked, clamped and stored exactly as a loaded document would be.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

#include "cli/command_line.h"
#include "platform/dialog.h"

// Sets control `id` from `value` as written in a document (numbers in decimal, checks 0 or 1, list
// rows from 0, texts as they are). Returns 0 with a one-line `error` for an unknown control or a
// bad value.
int ApplyControlText(WindowHandle dialog, int32_t id, const std::string& value, std::string* error);

// A dialog set from the current settings, then from the effect document at `document` unless it
// is empty, then from the options (--effect, --text, --font, --size, --bold, --italic,
// --true-color, --custom-palette, --dither, --transparent, --supercompress, --alpha) and every
// --control in order; every material button holds a block made from its colour. Null with
// `error` on failure (an unreadable or damaged document among them); free with DestroyRunDialog.
WindowHandle CreateRunDialog(const CommandLine& line, const std::string& document,
                             std::string* error);
// Frees the material buttons' blocks, then the dialog. A null dialog is accepted.
void DestroyRunDialog(WindowHandle dialog);

// The id of the control behind the "Frames" setting of the page of effect `row`, or 0.
int32_t FramesControl(int32_t row);

// Writes the dialog's state as an effect document at `path`, whole or not at all. Returns 0 with
// `error` on failure.
int SaveRunDocument(WindowHandle dialog, const std::string& path, std::string* error);

// Writes one line per control of the main dialog (`effect` empty) or of the page of the effect
// named `effect`: id, kind, range ("min..max" or the number of rows), current value and label,
// the value as a document line would hold it. Returns 0 with `error` for an unknown effect.
int PrintControls(FILE* out, const CommandLine& line, const std::string& effect,
                  std::string* error);
