// A nearest-colour search that answers exactly as NearestPaletteIndex's linear scan, including its
// tie rule, but looks at only a few entries per colour. The colour cube is cut into 32 x 32 x 32
// cells of 8 levels a side (red in the low five bits of a cell number, then green, then blue); for
// each cell met, the entries that can be nearest to any colour inside it are listed once, in index
// order, and each colour's answer is remembered. A matcher owns its blocks; CloseColourMatcher
// (or leaving its scope) frees them. One matcher can serve every frame of a palette.
#pragma once

#include <cstdint>

#include "platform/memory.h"

constexpr int32_t kCoarseCells = 32768;

struct ColourMatcher {
  int32_t count = 0;  // entries searched, 0 to 256
  int32_t red[256], green[256], blue[256];
  MovableHandle cellBlock = nullptr;  // per cell: byte offset + 1 of its record (0 = none yet)
  uint32_t* cellRecord = nullptr;
  uint8_t* coarse = nullptr;  // per listed cell: the nearest entry to its lower corner
  // The cell records: 512 remembered answers, 64 bytes of flags saying which are known, the
  // padded number of candidates, then their reds, greens, blues and indices as floats.
  MovableHandle poolBlock = nullptr;
  uint8_t* pool = nullptr;
  uint32_t poolUsed = 0;  // bytes
  uint32_t poolSize = 0;
  ColourMatcher() = default;
  ColourMatcher(const ColourMatcher&) = delete;
  ColourMatcher& operator=(const ColourMatcher&) = delete;
  ~ColourMatcher();
};

// Prepares a search over the first `count` entries of `palette` (clamped to 0 to 256). Returns 0
// when memory fails, with nothing held.
int OpenColourMatcher(ColourMatcher* matcher, const uint8_t* palette, int32_t count);
// Whether an open matcher searches exactly these entries, so that it can serve another picture.
int ColourMatcherFits(const ColourMatcher* matcher, const uint8_t* palette, int32_t count);
// Frees what the matcher holds; safe to call twice and on a matcher whose opening failed.
void CloseColourMatcher(ColourMatcher* matcher);

// The cell number of a colour: five bits of each channel, red lowest.
inline int32_t CoarseCell(uint32_t red, uint32_t green, uint32_t blue) {
  return static_cast<int32_t>((red >> 3) | (green >> 3) << 5 | (blue >> 3) << 10);
}

// The search itself, for colours not answered before; -1 when memory fails.
int32_t SearchNearest(ColourMatcher* matcher, int32_t red, int32_t green, int32_t blue);

constexpr uint32_t kAnswersPerCell = 512;
constexpr uint32_t kKnownFlagBytes = kAnswersPerCell / 8;

// The same index as NearestPaletteIndex(red, green, blue, palette, count); -1 when a cell's list
// could not be stored. Remembered answers cost one lookup.
inline int32_t MatchNearest(ColourMatcher* m, int32_t red, int32_t green, int32_t blue) {
  const uint32_t record = m->cellRecord ? m->cellRecord[CoarseCell(red, green, blue)] : 0;
  if (record) {
    const uint8_t* answers = m->pool + record - 1;
    const uint32_t slot = (red & 7) | (green & 7) << 3 | (blue & 7) << 6;
    if (answers[kAnswersPerCell + (slot >> 3)] & (1u << (slot & 7))) return answers[slot];
  }
  return SearchNearest(m, red, green, blue);
}

// The coarse-table entry of the colour's cell: NearestPaletteIndex of the cell's lower corner.
int32_t MatchCoarse(ColourMatcher* matcher, int32_t red, int32_t green, int32_t blue);
// The first exactly equal entry, or else the coarse-table entry; -1 on memory failure.
int32_t MatchExactOrCoarse(ColourMatcher* matcher, int32_t red, int32_t green, int32_t blue);
