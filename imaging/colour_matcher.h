// A nearest-colour search that answers exactly as NearestPaletteIndex's linear scan, including its
// tie rule, but looks at only a few entries per colour. The colour cube is cut into 32 x 32 x 32
// cells of 8 levels a side (red in the low five bits of a cell number, then green, then blue); for
// each cell met, the entries that can be nearest to any colour inside it are listed once, in index
// order, in a few bytes, so that the lists of a whole animation stay in the processor's cache.
// A matcher owns its blocks; CloseColourMatcher (or leaving its scope) frees them. One matcher
// can serve every frame of a palette.
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
  // The cell lists: a word whose first byte holds the number of candidates less one, then each
  // candidate as four bytes: red, green, blue and its index.
  MovableHandle poolBlock = nullptr;
  uint8_t* pool = nullptr;
  uint32_t poolUsed = 0;  // bytes
  uint32_t poolSize = 0;
  // Recent answers by colour, small enough for the first-level cache: rendered frames repeat a
  // few colours (backgrounds, text, the dither's small steps around them) again and again.
  uint32_t recentColour[4096];  // 0x00BBGGRR, or 0xFFFFFFFF for an empty slot
  uint8_t recentIndex[4096];
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

// Lists a cell not met before; the list's offset + 1, or 0 when memory fails.
uint32_t ListColourCell(ColourMatcher* matcher, int32_t cell);

// The same index as NearestPaletteIndex(red, green, blue, palette, count); -1 when a cell's list
// could not be stored. Candidates are in index order and only a strictly smaller distance
// replaces the best, so ties keep the earlier entry.
inline int32_t MatchNearest(ColourMatcher* m, int32_t red, int32_t green, int32_t blue) {
  if (m->count < 1) return 0;
  if (!m->cellRecord) return -1;
  const uint32_t colour = static_cast<uint32_t>(red | green << 8 | blue << 16);
  const uint32_t slot = (colour * 0x9E3779B1u) >> 20;
  if (m->recentColour[slot] == colour) return m->recentIndex[slot];
  const int32_t cell = CoarseCell(red, green, blue);
  uint32_t offset = m->cellRecord[cell];
  if (!offset && !(offset = ListColourCell(m, cell))) return -1;
  const uint8_t* list = m->pool + offset - 1;
  const uint32_t n = list[0] + 1u;
  const uint8_t* c = list + 4;
  int32_t best = 0x7FFFFFFF, bestIndex = 0;
  for (uint32_t k = 0; k < n; ++k, c += 4) {
    const int32_t dr = red - c[0], dg = green - c[1], db = blue - c[2];
    const int32_t d = 3 * dr * dr + 4 * dg * dg + 2 * db * db;
    // Without branches: which candidate wins follows the data and cannot be predicted.
    const bool better = d < best;
    bestIndex = better ? c[3] : bestIndex;
    best = better ? d : best;
  }
  m->recentColour[slot] = colour;
  m->recentIndex[slot] = static_cast<uint8_t>(bestIndex);
  return bestIndex;
}

// The coarse-table entry of the colour's cell: NearestPaletteIndex of the cell's lower corner.
int32_t MatchCoarse(ColourMatcher* matcher, int32_t red, int32_t green, int32_t blue);
// The first exactly equal entry, or else the coarse-table entry; -1 on memory failure.
int32_t MatchExactOrCoarse(ColourMatcher* matcher, int32_t red, int32_t green, int32_t blue);
