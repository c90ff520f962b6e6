// Candidate lists per colour cell. An entry is listed for a cell when its smallest possible
// weighted distance to the cell is no more than the smallest, over all entries, of the largest
// distance to the cell: any entry that is nearest for some colour of the cell passes that test, and
// taking the first smallest distance in index order keeps the linear scan's preference for the
// earlier entry.
#include "imaging/colour_matcher.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr uint32_t kRecordMax = 4 + 32 * 32;
constexpr uint32_t kInitialPool = 65536;

inline int32_t Distance(const ColourMatcher* m, int32_t i, int32_t red, int32_t green,
                        int32_t blue) {
  const int32_t dr = red - m->red[i];
  const int32_t dg = green - m->green[i];
  const int32_t db = blue - m->blue[i];
  return 3 * dr * dr + 4 * dg * dg + 2 * db * db;
}

// Smallest and largest |value - v| for v in [low, low + 7].
inline void AxisSpan(int32_t value, int32_t low, int32_t* nearest, int32_t* farthest) {
  const int32_t high = low + 7;
  *nearest = value < low ? low - value : value > high ? value - high : 0;
  *farthest =
      std::max(value > low ? value - low : low - value, value > high ? value - high : high - value);
}

}  // namespace

int32_t CellDistancesPlain(const ColourMatcher* m, int32_t lowRed, int32_t lowGreen,
                           int32_t lowBlue, int32_t* nearest) {
  int32_t bound = 0x7FFFFFFF;
  for (int32_t i = 0; i < m->count; ++i) {
    int32_t nr, fr, ng, fg, nb, fb;
    AxisSpan(m->red[i], lowRed, &nr, &fr);
    AxisSpan(m->green[i], lowGreen, &ng, &fg);
    AxisSpan(m->blue[i], lowBlue, &nb, &fb);
    nearest[i] = 3 * nr * nr + 4 * ng * ng + 2 * nb * nb;
    bound = std::min(bound, 3 * fr * fr + 4 * fg * fg + 2 * fb * fb);
  }
  return bound;
}

int32_t CellDistances(const ColourMatcher* m, int32_t lowRed, int32_t lowGreen, int32_t lowBlue,
                      int32_t* nearest) {
#if defined(__SSE2__)
  // Eight entries at a time; the padding copies the last entry, which changes no smallest.
  const __m128i zero = _mm_setzero_si128();
  const __m128i lows[3] = {_mm_set1_epi16(static_cast<int16_t>(lowRed)),
                           _mm_set1_epi16(static_cast<int16_t>(lowGreen)),
                           _mm_set1_epi16(static_cast<int16_t>(lowBlue))};
  const __m128i seven = _mm_set1_epi16(7);
  __m128i bound = _mm_set1_epi32(0x7FFFFFFF);
  for (int32_t i = 0; i < m->count; i += 8) {
    const int16_t* channels[3] = {m->red + i, m->green + i, m->blue + i};
    __m128i near[3], far[3];
    for (int32_t k = 0; k < 3; ++k) {
      const __m128i v = _mm_load_si128(reinterpret_cast<const __m128i*>(channels[k]));
      const __m128i low = lows[k], high = _mm_add_epi16(lows[k], seven);
      const __m128i belowLow = _mm_sub_epi16(low, v), aboveHigh = _mm_sub_epi16(v, high);
      near[k] = _mm_max_epi16(_mm_max_epi16(belowLow, aboveHigh), zero);
      far[k] = _mm_max_epi16(_mm_max_epi16(belowLow, _mm_sub_epi16(v, low)),
                             _mm_max_epi16(aboveHigh, _mm_sub_epi16(high, v)));
    }
    __m128i nearLow, nearHigh, farLow, farHigh;
    WeightedSquares(near[0], near[1], near[2], &nearLow, &nearHigh);
    WeightedSquares(far[0], far[1], far[2], &farLow, &farHigh);
    _mm_store_si128(reinterpret_cast<__m128i*>(nearest + i), nearLow);
    _mm_store_si128(reinterpret_cast<__m128i*>(nearest + i + 4), nearHigh);
    bound = SmallerLanes(bound, SmallerLanes(farLow, farHigh));
  }
  bound = SmallerLanes(bound, _mm_shuffle_epi32(bound, _MM_SHUFFLE(1, 0, 3, 2)));
  bound = SmallerLanes(bound, _mm_shuffle_epi32(bound, _MM_SHUFFLE(2, 3, 0, 1)));
  return _mm_cvtsi128_si32(bound);
#else
  return CellDistancesPlain(m, lowRed, lowGreen, lowBlue, nearest);
#endif
}

namespace {

int GrowPool(ColourMatcher* m) {
  const uint32_t size = m->poolSize * 2;
  MovableUnlock(m->poolBlock);
  m->pool = nullptr;
  MovableHandle grown = MovableReAlloc(m->poolBlock, size);
  if (grown) {
    m->poolBlock = grown;
    m->poolSize = size;
  }
  m->pool = static_cast<uint8_t*>(MovableLock(m->poolBlock));
  if (!m->pool) CloseColourMatcher(m);  // its lists are gone: it can serve no one
  return grown && m->pool;
}

// Lists the candidates of a cell and its coarse entry; returns the record's offset + 1, or 0.
uint32_t ListCell(ColourMatcher* m, int32_t cell) {
  if (m->poolUsed + kRecordMax > m->poolSize && !GrowPool(m)) return 0;
  const int32_t lowRed = (cell & 31) << 3;
  const int32_t lowGreen = (cell >> 5 & 31) << 3;
  const int32_t lowBlue = (cell >> 10) << 3;
  alignas(16) int32_t nearest[256];
  const int32_t bound = CellDistances(m, lowRed, lowGreen, lowBlue, nearest);
  uint8_t chosen[256];
  int32_t length = 0;
  int32_t best = 0x7FFFFFFF;
  int32_t corner = 0;
  for (int32_t i = 0; i < m->count; ++i) {
    if (nearest[i] > bound) continue;
    chosen[length++] = static_cast<uint8_t>(i);
    const int32_t d = Distance(m, i, lowRed, lowGreen, lowBlue);
    if (d < best) {
      best = d;
      corner = i;
    }
  }
  // At least one entry is always listed. A short last block repeats the last candidate, which
  // changes no smallest key.
  const int32_t blocks = (length + 7) / 8;
  uint8_t* list = m->pool + m->poolUsed;
  std::memset(list, 0, 4);
  list[0] = static_cast<uint8_t>(blocks);
  for (int32_t k = 0; k < blocks * 8; ++k) {
    const int32_t i = chosen[std::min(k, length - 1)];
    uint8_t* block = list + 4 + (k / 8) * 32 + k % 8;
    block[0] = static_cast<uint8_t>(m->red[i]);
    block[8] = static_cast<uint8_t>(m->green[i]);
    block[16] = static_cast<uint8_t>(m->blue[i]);
    block[24] = static_cast<uint8_t>(i);
  }
  m->coarse[cell] = static_cast<uint8_t>(corner);
  const uint32_t offset = m->poolUsed + 1;
  m->poolUsed += 4 + 32 * static_cast<uint32_t>(blocks);
  m->cellRecord[cell] = offset;
  return offset;
}

}  // namespace

ColourMatcher::~ColourMatcher() {
  CloseColourMatcher(this);
}

int OpenColourMatcher(ColourMatcher* m, const uint8_t* palette, int32_t count) {
  CloseColourMatcher(m);
  m->count = std::clamp(count, 0, 256);
  for (int32_t i = 0; i < m->count; ++i) {
    m->red[i] = palette[i * 3];
    m->green[i] = palette[i * 3 + 1];
    m->blue[i] = palette[i * 3 + 2];
  }
  for (int32_t i = m->count; i < ((m->count + 7) & ~7); ++i) {
    m->red[i] = m->red[m->count - 1];
    m->green[i] = m->green[m->count - 1];
    m->blue[i] = m->blue[m->count - 1];
  }
  m->poolUsed = 0;
  m->poolSize = kInitialPool;
  // Cell records, recent answers, then the coarse table.
  m->cellBlock =
      MovableAlloc(kCoarseCells * (sizeof(uint32_t) + 1) + kRecentColours * sizeof(uint32_t));
  m->poolBlock = m->cellBlock ? MovableAlloc(kInitialPool) : nullptr;
  if (m->poolBlock) {
    m->cellRecord = static_cast<uint32_t*>(MovableLock(m->cellBlock));
    m->pool = static_cast<uint8_t*>(MovableLock(m->poolBlock));
  }
  if (!m->cellRecord || !m->pool) {
    CloseColourMatcher(m);
    return 0;
  }
  m->recent = m->cellRecord + kCoarseCells;
  for (uint32_t slot = 0; slot < kRecentColours; ++slot) {
    uint32_t stranger = 0;
    while (RecentSlot(stranger) == slot) ++stranger;
    m->recent[slot] = stranger;
  }
  m->coarse = reinterpret_cast<uint8_t*>(m->recent + kRecentColours);
  return 1;
}

int ColourMatcherFits(const ColourMatcher* m, const uint8_t* palette, int32_t count) {
  if (!m || !m->cellRecord || m->count != std::clamp(count, 0, 256)) return 0;
  for (int32_t i = 0; i < m->count; ++i)
    if (m->red[i] != palette[i * 3] || m->green[i] != palette[i * 3 + 1] ||
        m->blue[i] != palette[i * 3 + 2])
      return 0;
  return 1;
}

void CloseColourMatcher(ColourMatcher* m) {
  if (m->cellRecord) MovableUnlock(m->cellBlock);
  if (m->pool) MovableUnlock(m->poolBlock);
  MovableFree(m->cellBlock);
  MovableFree(m->poolBlock);
  m->cellBlock = m->poolBlock = nullptr;
  m->cellRecord = nullptr;
  m->coarse = nullptr;
  m->recent = nullptr;
  m->pool = nullptr;
}

uint32_t ListColourCell(ColourMatcher* m, int32_t cell) {
  return ListCell(m, cell);
}

int32_t MatchCoarse(ColourMatcher* m, int32_t red, int32_t green, int32_t blue) {
  if (m->count < 1) return 0;
  if (!m->cellRecord) return -1;
  const int32_t cell = CoarseCell(red, green, blue);
  if (!m->cellRecord[cell] && !ListCell(m, cell)) return -1;
  return m->coarse[cell];
}

int32_t MatchExactOrCoarse(ColourMatcher* m, int32_t red, int32_t green, int32_t blue) {
  const int32_t nearest = MatchNearest(m, red, green, blue);
  if (nearest < 0 || m->count < 1) return nearest;
  if (m->red[nearest] == red && m->green[nearest] == green && m->blue[nearest] == blue)
    return nearest;
  return m->coarse[CoarseCell(red, green, blue)];
}
