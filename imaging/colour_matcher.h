// A nearest-colour search that answers exactly as NearestPaletteIndex's linear scan, including its
// tie rule, but looks at only a few entries per colour. The colour cube is cut into 32 x 32 x 32
// cells of 8 levels a side (red in the low five bits of a cell number, then green, then blue); for
// each cell met, the entries that can be nearest to any colour inside it are listed once, in index
// order, in a few bytes, so that the lists of a whole animation stay in the processor's cache.
// A matcher owns its blocks; CloseColourMatcher (or leaving its scope) frees them. One matcher
// can serve every frame of a palette.
#pragma once

#include <cstdint>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "platform/memory.h"

constexpr int32_t kCoarseCells = 32768;
constexpr int32_t kRecentBits = 13;
constexpr int32_t kRecentColours = 1 << kRecentBits;

struct ColourMatcher {
  int32_t count = 0;  // entries searched, 0 to 256
  // The entries' channels, each list padded to a multiple of eight with copies of the last entry.
  alignas(16) int16_t red[256];
  alignas(16) int16_t green[256];
  alignas(16) int16_t blue[256];
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
  // Each slot holds a colour 0x00BBGGRR with its answer in the top byte; an empty slot holds a
  // colour that does not belong there, so that no colour can match it.
  uint32_t* recent = nullptr;
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

// Where a colour 0x00BBGGRR is kept among the recent answers.
inline uint32_t RecentSlot(uint32_t colour) {
  return (colour * 0x9E3779B1u) >> (32 - kRecentBits);
}

// The cell number of a colour: five bits of each channel, red lowest.
inline int32_t CoarseCell(uint32_t red, uint32_t green, uint32_t blue) {
  return static_cast<int32_t>((red >> 3) | (green >> 3) << 5 | (blue >> 3) << 10);
}

// Each entry's smallest weighted distance to the cell whose lowest corner is (lowRed, lowGreen,
// lowBlue), into `nearest` (room for the padded count); returns the smallest over the entries of
// the largest distance to the cell. CellDistancesPlain is the plain loop, which CellDistances
// follows where SSE2 is missing and matches where it is not.
int32_t CellDistances(const ColourMatcher* matcher, int32_t lowRed, int32_t lowGreen,
                      int32_t lowBlue, int32_t* nearest);
int32_t CellDistancesPlain(const ColourMatcher* matcher, int32_t lowRed, int32_t lowGreen,
                           int32_t lowBlue, int32_t* nearest);

// Lists a cell not met before; the list's offset + 1, or 0 when memory fails.
uint32_t ListColourCell(ColourMatcher* matcher, int32_t cell);

#if defined(__SSE2__)
// 3 r r + 4 g g + 2 b b for eight lanes of 16 bits, each at most 255 in size, as two registers of
// four 32-bit lanes: (r, g) times (3 r, 4 g) and (b, b) times itself, one multiply-add each.
inline void WeightedSquares(__m128i r, __m128i g, __m128i b, __m128i* low, __m128i* high) {
  const __m128i r3 = _mm_add_epi16(r, _mm_add_epi16(r, r));
  const __m128i g4 = _mm_slli_epi16(g, 2);
  *low = _mm_add_epi32(_mm_madd_epi16(_mm_unpacklo_epi16(r, g), _mm_unpacklo_epi16(r3, g4)),
                       _mm_madd_epi16(_mm_unpacklo_epi16(b, b), _mm_unpacklo_epi16(b, b)));
  *high = _mm_add_epi32(_mm_madd_epi16(_mm_unpackhi_epi16(r, g), _mm_unpackhi_epi16(r3, g4)),
                        _mm_madd_epi16(_mm_unpackhi_epi16(b, b), _mm_unpackhi_epi16(b, b)));
}

// The smaller of each pair of 32-bit lanes.
inline __m128i SmallerLanes(__m128i a, __m128i b) {
  const __m128i aGreater = _mm_cmpgt_epi32(a, b);
  return _mm_or_si128(_mm_and_si128(aGreater, b), _mm_andnot_si128(aGreater, a));
}
#endif

// The smallest key over `blocks` blocks of a cell list, the plain way: each candidate's weighted
// distance joined with its index, distance above and index below.
inline int32_t ScanCellListPlain(const uint8_t* c, uint32_t blocks, int32_t red, int32_t green,
                                 int32_t blue) {
  int32_t best = 0x7FFFFFFF;
  for (uint32_t k = 0; k < blocks; ++k, c += 32)
    for (int32_t j = 0; j < 8; ++j) {
      const int32_t dr = red - c[j], dg = green - c[8 + j], db = blue - c[16 + j];
      const int32_t key = (3 * dr * dr + 4 * dg * dg + 2 * db * db) << 8 | c[24 + j];
      best = key < best ? key : best;
    }
  return best & 0xFF;
}

// The same as ScanCellListPlain. With SSE2 (every x86-64 processor has it) one block is a few
// register operations on differences in 16-bit lanes.
inline int32_t ScanCellList(const uint8_t* c, uint32_t blocks, int32_t red, int32_t green,
                            int32_t blue) {
#if defined(__SSE2__)
  const __m128i zero = _mm_setzero_si128();
  const __m128i r = _mm_set1_epi16(static_cast<int16_t>(red));
  const __m128i g = _mm_set1_epi16(static_cast<int16_t>(green));
  const __m128i b = _mm_set1_epi16(static_cast<int16_t>(blue));
  __m128i best = _mm_set1_epi32(0x7FFFFFFF);
  for (uint32_t k = 0; k < blocks; ++k, c += 32) {
    const __m128i redGreen = _mm_loadu_si128(reinterpret_cast<const __m128i*>(c));
    const __m128i blueIndex = _mm_loadu_si128(reinterpret_cast<const __m128i*>(c + 16));
    const __m128i dr = _mm_sub_epi16(r, _mm_unpacklo_epi8(redGreen, zero));
    const __m128i dg = _mm_sub_epi16(g, _mm_unpackhi_epi8(redGreen, zero));
    const __m128i db = _mm_sub_epi16(b, _mm_unpacklo_epi8(blueIndex, zero));
    const __m128i index = _mm_unpackhi_epi8(blueIndex, zero);
    __m128i low, high;
    WeightedSquares(dr, dg, db, &low, &high);
    const __m128i lowKey = _mm_or_si128(_mm_slli_epi32(low, 8), _mm_unpacklo_epi16(index, zero));
    const __m128i highKey = _mm_or_si128(_mm_slli_epi32(high, 8), _mm_unpackhi_epi16(index, zero));
    best = SmallerLanes(best, SmallerLanes(lowKey, highKey));
  }
  best = SmallerLanes(best, _mm_shuffle_epi32(best, _MM_SHUFFLE(1, 0, 3, 2)));
  best = SmallerLanes(best, _mm_shuffle_epi32(best, _MM_SHUFFLE(2, 3, 0, 1)));
  return _mm_cvtsi128_si32(best) & 0xFF;
#else
  return ScanCellListPlain(c, blocks, red, green, blue);
#endif
}

// The same index as NearestPaletteIndex(red, green, blue, palette, count) from the colour's cell
// list alone; -1 when the list could not be stored. Each candidate's weighted distance is joined
// with its index into one key, distance above and index below, so the smallest key is the
// nearest entry and, among equally near ones, the earlier: the linear scan's tie rule.
inline int32_t MatchInCell(ColourMatcher* m, int32_t red, int32_t green, int32_t blue) {
  if (m->count < 1) return 0;
  if (!m->cellRecord) return -1;
  const int32_t cell = CoarseCell(red, green, blue);
  uint32_t offset = m->cellRecord[cell];
  if (!offset && !(offset = ListColourCell(m, cell))) return -1;
  const uint8_t* list = m->pool + offset - 1;
  return ScanCellList(list + 4, list[0], red, green, blue);
}

// The same as MatchInCell, through the answers of recent colours first: pictures that repeat a
// few colours again and again (backgrounds, text) are served from there.
inline int32_t MatchNearest(ColourMatcher* m, int32_t red, int32_t green, int32_t blue) {
  if (m->count < 1) return 0;
  if (!m->cellRecord) return -1;
  const uint32_t colour = static_cast<uint32_t>(red | green << 8 | blue << 16);
  const uint32_t slot = RecentSlot(colour);
  const uint32_t held = m->recent[slot];
  if ((held & 0xFFFFFF) == colour) return static_cast<int32_t>(held >> 24);
  const int32_t index = MatchInCell(m, red, green, blue);
  if (index < 0) return -1;
  m->recent[slot] = colour | static_cast<uint32_t>(index) << 24;
  return index;
}

// The coarse-table entry of the colour's cell: NearestPaletteIndex of the cell's lower corner.
int32_t MatchCoarse(ColourMatcher* matcher, int32_t red, int32_t green, int32_t blue);
// The first exactly equal entry, or else the coarse-table entry; -1 on memory failure.
int32_t MatchExactOrCoarse(ColourMatcher* matcher, int32_t red, int32_t green, int32_t blue);
