// The material button's record, shared by every platform: the block a button holds, made from its
// creation colour, and the button's line in an effect document ("MATLBT<id>=" and the record's
// 1282 bytes as upper-case hex). A button owns its block and the handles inside it.
#pragma once

#include <cstdint>
#include <string>

#include "materials/material.h"
#include "platform/dialog.h"
#include "platform/memory.h"

constexpr const char kMaterialLineKey[] = "MATLBT";
constexpr uint32_t kMaterialHexDigits = kMaterialSize * 2;

// The button's messages: create the record from the creation colour (lParam), duplicate it
// (answers the new block), show the kind menu, and the note to the parent after any change of
// the fill (wParam the kind, lParam the button). Menu and editor commands come as WM_COMMAND.
constexpr uint32_t kMessageMaterialCreate = 0x590;
constexpr uint32_t kMessageMaterialDuplicate = 0x591;
constexpr uint32_t kMessageMaterialMenu = 0x52D;
constexpr uint32_t kMessageMaterialChanged = 0x52F;
constexpr int32_t kMaterialEditCommand = 99;
constexpr int32_t kMaterialKindCommand = 100;  // 100 to 103: kinds 0 to 3
constexpr int32_t kMaterialArrowWidth = 16;    // the right-most pixels of the button
constexpr int32_t kMaterialPreviewInset = 2;

// A new block holding a default Material whose Simple colour is `creationColour`, or null.
MovableHandle CreateButtonMaterial(uint32_t creationColour);
// Frees the record's tile and preview images, then the block. A null handle is accepted.
void FreeButtonMaterial(MovableHandle material);

// The handle a material button keeps in its user data, or null.
MovableHandle ButtonMaterialHandle(WindowHandle button);
// The button's record made from `creationColour` when it has none yet; nonzero when it holds one
// afterwards. The freeing of the record the button holds, when the button goes.
int CreateMaterialForButton(WindowHandle button, uint32_t creationColour);
void FreeMaterialOfButton(WindowHandle button);
// A button's "MATLBT" document line, where no window handles it (the headless dialog): the line
// read into a new record that replaces the button's, its tile loaded again (1, or 0 with the
// record kept), and the record's line written into `line` without its line end (its length, or
// 0 when it doesn't fit).
int MaterialButtonTakeLine(WindowHandle button, const char* line);
size_t MaterialButtonFormatLine(WindowHandle button, char* line, size_t size);
// The button's Material, locked, or null when it has none. The caller unlocks
// ButtonMaterialHandle(button) when finished.
Material* MaterialForButton(WindowHandle button);
// MaterialForButton for the guard's life: `material` is null when the button holds none, and the
// record is unlocked when the guard goes.
struct ScopedButtonMaterial {
  explicit ScopedButtonMaterial(WindowHandle b) : button(b), material(MaterialForButton(b)) {}
  ~ScopedButtonMaterial() {
    if (material) MovableUnlock(ButtonMaterialHandle(button));
  }
  ScopedButtonMaterial(const ScopedButtonMaterial&) = delete;
  ScopedButtonMaterial& operator=(const ScopedButtonMaterial&) = delete;
  WindowHandle button;
  Material* material;
};
// The Simple colour of the button's Material, for pages that read a material as one colour;
// `fallback` when the button has none.
uint32_t ButtonSolidColour(WindowHandle button, uint32_t fallback);

// A copy of the record in a new block for an editor or another button: `preview` cleared,
// `tileImage` duplicated. Null when memory fails.
MovableHandle DuplicateButtonMaterial(MovableHandle material);

// Makes the button's picture again: `preview` becomes MaterialFill at width by height and
// `averageColour` the mean of its pixels. A failed fill keeps the old preview and returns 0.
int RefreshMaterialPreview(Material* material, int32_t width, int32_t height);
// The mean colour of a 24-bit picture, each channel's sum divided by the pixel count; 0 when empty.
uint32_t AverageImageColour(MovableHandle image);
// The caption colour on a preview of mean colour `average`: white on dark, black on light.
uint32_t MaterialCaptionColour(uint32_t average);

// The document line of the button `controlId` holding `material`, ending in a newline; empty when
// the block cannot be read.
std::string MaterialDocumentLine(int32_t controlId, MovableHandle material);

// Reads a document line into a new block. A line that does not begin with "MATLBT" (any case), or
// whose text after "=" and blanks holds a character other than a hex digit, fails and leaves
// `*material` as it was. Short text decodes as far as it goes, the rest of the record zero. The
// run-time handles in the text belong to the run that wrote it and are cleared, and the tile is
// loaded again from the current matrix group (ReloadMaterialTile). On success the old
// block and its images are freed and `*material` is the new block. Returns 1 or 0.
int ReadMaterialDocumentLine(const char* line, MovableHandle* material);
