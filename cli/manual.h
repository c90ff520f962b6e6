// The user's manual: its sources (docs/manual/, built into the program), read into sections, and
// written as the help document RFDPLGM5.HTML, as the man page gm5.1 and as plain text for
// `gm5 help EFFECT`. Each effect's table of controls is made from its page table, so the manual
// states the ranges and defaults the dialog really has.
//
// The sources are a small markup, one file a section:
//   = Title {ANCHOR}        the section's title and anchor (first line)
//   == Title                a subsection
//   - text                  a list item; lines indented by two blanks continue it
//       text                a line indented by four blanks: a preformatted line
//   @controls [main]        the table of the effect's page (or of the main dialog)
//   @picture FILE Caption   a picture from the picture folder, or only its caption when missing
//   @effect-pictures        the effect's animation, contact sheet and page screenshot
// Inline: `code`, **bold** and [text](#ANCHOR). Anything else is a paragraph.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "controls/page_tables.h"

struct ManualSource {
  const char* name;  // the file's path below docs/manual/, without ".txt": "effects/snow"
  const char* text;
};

// The sources as built into the program (generated from docs/manual/ by the build).
extern const ManualSource kManualSources[];
extern const int32_t kManualSourceCount;

enum ManualBlockKind : int32_t {
  ManualSubheading,
  ManualParagraph,
  ManualItem,
  ManualCode,  // one preformatted line
  ManualControls,
  ManualPicture,
  ManualEffectPictures,
};

struct ManualBlock {
  ManualBlockKind kind;
  std::string text;  // the text; a picture's caption
  std::string file;  // a picture's file name; "main" for the main dialog's controls
};

struct ManualSection {
  std::string anchor;
  std::string title;
  int32_t effectRow;  // the effect's row in the Effect box, or -1
  std::vector<ManualBlock> blocks;
};

// The sections in the manual's order: the preface, the main dialog, one per effect in the Effect
// box's order, then the rest. Returns 0 with a message naming the file and line on a source that
// is malformed, not plain ASCII, or missing (every effect must have one).
int ReadManual(const ManualSource* sources, int32_t count, std::vector<ManualSection>* sections,
               std::string* error);

// The anchor of an effect's section: its name in capitals with "_" for blanks ("DIAGONAL_FUSE").
std::string EffectAnchor(const char* name);

// One row of a control table, in words.
struct ControlRow {
  int32_t id;
  std::string name;   // the caption without "&" and ":", made unique on the page
  std::string takes;  // what the control takes: "number, 0 to 255", "on or off", ...
  std::string value;  // its default
  std::string key;    // the setting it is kept in, or empty
};

// The rows of a page table (controls with a value; labels and buttons are left out). Defaults
// are those of the settings when the control has one, else those of the table.
std::vector<ControlRow> ControlRows(const PageTable& table);

// Lets the caller see which pictures exist: returns nonzero when `file` is in the picture folder,
// with its size in pixels (0 by 0 when it is not known), which the document states so that its
// layout stands before the pictures arrive.
typedef int (*PictureExists)(const std::string& file, void* context, int32_t* width,
                             int32_t* height);

// The writers take the effects' page tables by style (21 of them): the program's own by default.

// The whole help document, self-contained but for the pictures, which it takes from `folder`
// (a folder name relative to the document) when `exists` says they are there.
std::string FormatManualHtml(const std::vector<ManualSection>& sections, const std::string& folder,
                             PictureExists exists, void* context,
                             const PageTable* pages = kPageTables.data());

// The man page of gm5: the sections of the "gm5" chapter, then every effect's section.
std::string FormatManualPage(const std::vector<ManualSection>& sections, const char* version,
                             const PageTable* pages = kPageTables.data());

// A section as plain text, wrapped at `width` columns, with its control table in columns.
std::string FormatManualText(const ManualSection& section, int32_t width,
                             const PageTable* pages = kPageTables.data());

// The section of the effect named `name` (any case, as in the Effect box), or null.
const ManualSection* FindEffectSection(const std::vector<ManualSection>& sections,
                                       const std::string& name);
