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
constexpr int32_t kRecentColours = 16384;

struct ColourMatcher {
  int32_t count = 0;  // entries searched, 0 to 256
  int32_t red[256], green[256], blue[256];
  MovableHandle cellBlock = nullptr;  // per cell: byte offset + 1 of its record (0 = none yet)
  uint32_t* cellRecord = nullptr;
  uint8_t* coarse = nullptr;  // per listed cell: the nearest entry to its lower corner
  // The cell lists: a word whose first byte holds the number of blocks, then blocks of eight
  // candidates, each as eight reds, eight greens, eight blues and their eight indices. A last
  // block that is not full repeats its last candidate.
  MovableHandle poolBlock = nullptr;
  uint8_t* pool = nullptr;
  uint32_t poolUsed = 0;  // bytes
  uint32_t poolSize = 0;
  // Recent answers by colour, kRecentColours of them in the cell block: rendered frames repeat a
  // few colours (backgrounds, text, the dither's small steps around them) again and again.
  uint32_t* recentColour = nullptr;  // 0x00BBGGRR, or 0xFFFFFFFF for an empty slot
  uint8_t* recentIndex = nullptr;
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
// could not be stored. Each candidate's weighted distance is joined with its index into one key,
// distance above and index below, so the smallest key is the nearest entry and, among equally
// near ones, the earlier: the linear scan's tie rule. Eight keys at a time, without branches.
inline int32_t MatchNearest(ColourMatcher* m, int32_t red, int32_t green, int32_t blue) {
  if (m->count < 1) return 0;
  if (!m->cellRecord) return -1;
  const uint32_t colour = static_cast<uint32_t>(red | green << 8 | blue << 16);
  const uint32_t slot = (colour * 0x9E3779B1u) >> 18;  // 14 bits: kRecentColours
  if (m->recentColour[slot] == colour) return m->recentIndex[slot];
  const int32_t cell = CoarseCell(red, green, blue);
  uint32_t offset = m->cellRecord[cell];
  if (!offset && !(offset = ListColourCell(m, cell))) return -1;
  const uint8_t* list = m->pool + offset - 1;
  const uint32_t blocks = list[0];
  const uint8_t* c = list + 4;
  int32_t best = 0x7FFFFFFF;
  for (uint32_t b = 0; b < blocks; ++b, c += 32) {
    int32_t key[8];
    for (int32_t j = 0; j < 8; ++j) {
      const int32_t dr = red - c[j], dg = green - c[8 + j], db = blue - c[16 + j];
      key[j] = (3 * dr * dr + 4 * dg * dg + 2 * db * db) << 8 | c[24 + j];
    }
    for (int32_t j = 0; j < 4; ++j) key[j] = key[j] < key[j + 4] ? key[j] : key[j + 4];
    key[0] = key[0] < key[2] ? key[0] : key[2];
    key[1] = key[1] < key[3] ? key[1] : key[3];
    key[0] = key[0] < key[1] ? key[0] : key[1];
    best = best < key[0] ? best : key[0];
  }
  const int32_t bestIndex = best & 0xFF;
  m->recentColour[slot] = colour;
  m->recentIndex[slot] = static_cast<uint8_t>(bestIndex);
  return bestIndex;
}

// The coarse-table entry of the colour's cell: NearestPaletteIndex of the cell's lower corner.
int32_t MatchCoarse(ColourMatcher* matcher, int32_t red, int32_t green, int32_t blue);
// The first exactly equal entry, or else the coarse-table entry; -1 on memory failure.
int32_t MatchExactOrCoarse(ColourMatcher* matcher, int32_t red, int32_t green, int32_t blue);
