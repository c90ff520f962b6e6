// Candidate lists per colour cell. An entry is listed for a cell when its smallest possible
// weighted distance to the cell is no more than the smallest, over all entries, of the largest
// distance to the cell: any entry that is nearest for some colour of the cell passes that test, and
// taking the first smallest distance in index order keeps the linear scan's preference for the
// earlier entry. Distances up to 585,225 are exact in a float, so the vectorised scan is exact.
#include "imaging/colour_matcher.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr uint32_t kRecordHead = kAnswersPerCell + kKnownFlagBytes + 16;  // answers, flags, count
constexpr uint32_t kRecordMax = kRecordHead + 4 * 256 * sizeof(float);
constexpr uint32_t kInitialPool = 65536;
constexpr float kPadding = -4096.0f;  // a colour no pixel comes near

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
  *farthest = std::max(value > low ? value - low : low - value,
                       value > high ? value - high : high - value);
}

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
  int32_t nearest[256];
  int32_t bound = 0x7FFFFFFF;
  for (int32_t i = 0; i < m->count; ++i) {
    int32_t nr, fr, ng, fg, nb, fb;
    AxisSpan(m->red[i], lowRed, &nr, &fr);
    AxisSpan(m->green[i], lowGreen, &ng, &fg);
    AxisSpan(m->blue[i], lowBlue, &nb, &fb);
    nearest[i] = 3 * nr * nr + 4 * ng * ng + 2 * nb * nb;
    bound = std::min(bound, 3 * fr * fr + 4 * fg * fg + 2 * fb * fb);
  }
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
  const int32_t padded = (length + 3) & ~3;
  uint8_t* record = m->pool + m->poolUsed;
  std::memset(record, 0, kRecordHead);
  const int32_t stored = padded;
  std::memcpy(record + kAnswersPerCell + kKnownFlagBytes, &stored, sizeof stored);
  float* r = reinterpret_cast<float*>(record + kRecordHead);
  float* g = r + padded;
  float* b = g + padded;
  float* index = b + padded;
  for (int32_t k = 0; k < padded; ++k) {
    const int32_t i = chosen[k < length ? k : 0];
    r[k] = k < length ? static_cast<float>(m->red[i]) : kPadding;
    g[k] = k < length ? static_cast<float>(m->green[i]) : kPadding;
    b[k] = k < length ? static_cast<float>(m->blue[i]) : kPadding;
    index[k] = static_cast<float>(i);
  }
  m->coarse[cell] = static_cast<uint8_t>(corner);
  const uint32_t offset = m->poolUsed + 1;
  m->poolUsed += kRecordHead + 4 * static_cast<uint32_t>(padded) * sizeof(float);
  m->cellRecord[cell] = offset;
  return offset;
}

uint8_t* CellRecord(ColourMatcher* m, int32_t cell) {
  uint32_t offset = m->cellRecord[cell];
  if (!offset && !(offset = ListCell(m, cell))) return nullptr;
  return m->pool + offset - 1;
}

}  // namespace

ColourMatcher::~ColourMatcher() { CloseColourMatcher(this); }

int OpenColourMatcher(ColourMatcher* m, const uint8_t* palette, int32_t count) {
  CloseColourMatcher(m);
  m->count = std::clamp(count, 0, 256);
  for (int32_t i = 0; i < m->count; ++i) {
    m->red[i] = palette[i * 3];
    m->green[i] = palette[i * 3 + 1];
    m->blue[i] = palette[i * 3 + 2];
  }
  m->poolUsed = 0;
  m->poolSize = kInitialPool;
  m->cellBlock = MovableAlloc(kCoarseCells * (sizeof(uint32_t) + 1));
  m->poolBlock = m->cellBlock ? MovableAlloc(kInitialPool) : nullptr;
  if (m->poolBlock) {
    m->cellRecord = static_cast<uint32_t*>(MovableLock(m->cellBlock));
    m->pool = static_cast<uint8_t*>(MovableLock(m->poolBlock));
  }
  if (!m->cellRecord || !m->pool) {
    CloseColourMatcher(m);
    return 0;
  }
  m->coarse = reinterpret_cast<uint8_t*>(m->cellRecord + kCoarseCells);
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
  m->pool = nullptr;
}

int32_t SearchNearest(ColourMatcher* m, int32_t red, int32_t green, int32_t blue) {
  if (m->count < 1) return 0;
  if (!m->cellRecord) return -1;
  uint8_t* record = CellRecord(m, CoarseCell(red, green, blue));
  if (!record) return -1;
  int32_t n;
  std::memcpy(&n, record + kAnswersPerCell + kKnownFlagBytes, sizeof n);
  const float* r = reinterpret_cast<const float*>(record + kRecordHead);
  const float* g = r + n;
  const float* b = g + n;
  const float* index = b + n;
  const float fr = static_cast<float>(red), fg = static_cast<float>(green),
              fb = static_cast<float>(blue);
  // Plain loops the compiler vectorises: the distances, their smallest, then the first entry
  // that has it, which is the earliest index since candidates are in index order.
  int32_t d[256];
  for (int32_t k = 0; k < n; ++k) {
    const float dr = fr - r[k], dg = fg - g[k], db = fb - b[k];
    d[k] = static_cast<int32_t>(3.0f * dr * dr + 4.0f * dg * dg + 2.0f * db * db);
  }
  int32_t best = d[0];
  for (int32_t k = 1; k < n; ++k) best = std::min(best, d[k]);
  int32_t k = 0;
  while (d[k] != best) ++k;
  const int32_t found = static_cast<int32_t>(index[k]);
  const uint32_t slot = (red & 7) | (green & 7) << 3 | (blue & 7) << 6;
  record[slot] = static_cast<uint8_t>(found);
  record[kAnswersPerCell + (slot >> 3)] |= static_cast<uint8_t>(1u << (slot & 7));
  return found;
}

int32_t MatchCoarse(ColourMatcher* m, int32_t red, int32_t green, int32_t blue) {
  if (m->count < 1) return 0;
  if (!m->cellRecord) return -1;
  const int32_t cell = CoarseCell(red, green, blue);
  if (!CellRecord(m, cell)) return -1;
  return m->coarse[cell];
}

int32_t MatchExactOrCoarse(ColourMatcher* m, int32_t red, int32_t green, int32_t blue) {
  const int32_t nearest = MatchNearest(m, red, green, blue);
  if (nearest < 0 || m->count < 1) return nearest;
  if (m->red[nearest] == red && m->green[nearest] == green && m->blue[nearest] == blue)
    return nearest;
  return m->coarse[CoarseCell(red, green, blue)];
}
