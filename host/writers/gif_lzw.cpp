// LZW as GIF decoders read it: codes from minCodeSize + 1 bits up to 12, least significant bit
// first. Any string the table has is a valid code: the decoder's table grows by one entry per code
// whatever was chosen, so the encoder is free to choose a shorter string than the longest when
// the next one then reaches further. Pixels that may be either value branch the search.
#include "host/writers/gif_lzw.h"

#include <algorithm>
#include <utility>

namespace {

constexpr int kLargestCode = 4095;
// How much shorter than the longest a string may be and still be tried. Each try walks the table
// from the string's end, so the cost grows with this number; 3 was the best of 0 to 8 for size,
// and a quarter faster than 8. The look-ahead is taken only where pixels may be either value: on
// fixed pixels the longest string alone gave files as small (Ring's 1 % smaller, Simple's 0.3 %
// larger) for a tenth less time. The default animation is 225,002 bytes with this.
constexpr size_t kShorterTried = 3;

struct CodeWriter {
  std::vector<uint8_t>* out;
  uint32_t bits = 0;
  int pending = 0;
  int width = 0;       // bits per code now
  int nextCode = 0;    // the code the next table entry gets
  int widthLimit = 0;  // 1 << width
  void Put(int code) {
    bits |= static_cast<uint32_t>(code) << pending;
    pending += width;
    while (pending >= 8) {
      out->push_back(static_cast<uint8_t>(bits & 0xFF));
      bits >>= 8;
      pending -= 8;
    }
    if (nextCode >= widthLimit && code <= kLargestCode) widthLimit = 1 << ++width;
  }
  void Flush() {
    if (pending > 0) out->push_back(static_cast<uint8_t>(bits & 0xFF));
  }
};

// The table's strings as children of their prefixes: (prefix code, value) -> code, open-addressed.
// Each slot holds key << 12 | code with key = prefix << 8 | value; 0 is free (no child is code 0).
// 8192 slots of four bytes stay in the processor's nearest caches, where a direct table of 4096
// codes by 256 values (2 MB) missed on almost every step of the search.
struct ChildTable {
  static constexpr uint32_t kSlots = 1u << 13;
  std::vector<uint32_t> slots = std::vector<uint32_t>(kSlots, 0);
  static uint32_t Slot(uint32_t key) { return (key * 2654435761u) >> 19; }
  int Find(int prefix, int value) const {
    const uint32_t key = static_cast<uint32_t>(prefix) << 8 | static_cast<uint32_t>(value);
    for (uint32_t at = Slot(key);; at = (at + 1) & (kSlots - 1)) {
      const uint32_t slot = slots[at];
      if (!slot) return 0;
      if ((slot >> 12) == key) return static_cast<int>(slot & 0xFFF);
    }
  }
  // Adds the entry unless the table has that string already.
  void Add(int prefix, int value, int code) {
    const uint32_t key = static_cast<uint32_t>(prefix) << 8 | static_cast<uint32_t>(value);
    uint32_t at = Slot(key);
    for (; slots[at]; at = (at + 1) & (kSlots - 1))
      if ((slots[at] >> 12) == key) return;
    slots[at] = key << 12 | static_cast<uint32_t>(code);
  }
  void Clear() { std::fill(slots.begin(), slots.end(), 0u); }
};

}  // namespace

void CompressGifPixels(const uint8_t* pixels, const uint8_t* either, size_t count, int minCodeSize,
                       int mark, std::vector<uint8_t>* codes) {
  const int clear = 1 << minCodeSize, end = clear + 1, symbols = 1 << minCodeSize;
  ChildTable child;
  const bool lookahead = either && mark >= 0;
  codes->clear();
  CodeWriter writer{codes};
  auto reset = [&]() {
    child.Clear();
    writer.nextCode = end + 1;
    writer.width = minCodeSize + 1;
    writer.widthLimit = 1 << writer.width;
  };
  // The values pixel i may hold: its own, then the mark when it may take that.
  auto values = [&](size_t i, int* first, int* second) {
    *first = pixels[i];
    *second = either && either[i] && mark >= 0 && mark != pixels[i] ? mark : -1;
  };
  // The longest string from pixel `from` whose first value is `start`: its end and its code. A
  // depth-first walk that follows the pixel's own value at once and leaves the mark's branch on
  // the stack for later, so pixels with one value cost no stack traffic.
  std::vector<std::pair<size_t, int>> stack, strings;
  auto longest = [&](size_t from, int start, int* code,
                     std::vector<std::pair<size_t, int>>* strings = nullptr) {
    size_t best = from + 1;
    *code = start;
    stack.clear();
    size_t at = from + 1;
    int node = start;
    for (;;) {
      if (strings) strings->push_back({at, node});
      if (at > best) best = at, *code = node;
      int next = 0;
      if (at < count) {
        int a, b;
        values(at, &a, &b);
        if (b >= 0)
          if (const int other = child.Find(node, b)) stack.push_back({at + 1, other});
        next = child.Find(node, a);
      }
      if (next) {
        node = next, ++at;
        continue;
      }
      if (stack.empty()) break;
      at = stack.back().first, node = stack.back().second;
      stack.pop_back();
    }
    return best;
  };
  // The first value of the string at pixel i: the one that starts the longer string; on a tie
  // the one that repeats the value before it, else the mark, so that runs of marks form.
  auto pickStart = [&](size_t i, int before) {
    int a, b, code = 0;
    values(i, &a, &b);
    if (b < 0) return a;
    const size_t withOwn = longest(i, a, &code), withMark = longest(i, b, &code);
    if (withOwn != withMark) return withMark > withOwn ? b : a;
    return a == before ? a : b;
  };
  // The last value of each string in the table.
  std::vector<int16_t> lastValue(kLargestCode + 1, 0);
  for (int v = 0; v < symbols; ++v) lastValue[v] = static_cast<int16_t>(v);
  reset();
  writer.Put(clear);
  if (count == 0) {
    writer.Put(end);
    writer.Flush();
    return;
  }
  std::vector<size_t> reachFrom(count, 0);
  size_t i = 0;
  int start = pickStart(0, -1);
  for (;;) {
    // Of the strings the table has from here, the one after which the next string reaches
    // furthest; the longest of those.
    int code = 0;
    size_t stop = longest(i, start, &code, lookahead ? &strings : nullptr);
    size_t reach = 0;
    const size_t longestEnd = stop;
    for (const auto& [end, node] : strings) {
      if (end + kShorterTried < longestEnd) continue;
      if (end >= count) {
        if (count > reach || (count == reach && end >= stop))
          reach = count, stop = end, code = node;
        continue;
      }
      // How far the string from `end` reaches is kept from the step that first asked: the
      // table has grown since by a few entries at most, and this only ranks the choices.
      size_t& further = reachFrom[end];
      if (!further) {
        int a, b, unused = 0;
        values(end, &a, &b);
        further = longest(end, a, &unused);
        if (b >= 0) further = std::max(further, longest(end, b, &unused));
      }
      if (further > reach || (further == reach && end > stop))
        reach = further, stop = end, code = node;
    }
    strings.clear();
    writer.Put(code);
    if (stop >= count) break;
    // The entry a decoder makes: this string and the next one's first value.
    const int next = pickStart(stop, lastValue[code]);
    if (writer.nextCode >= kLargestCode) {
      writer.Put(clear);
      reset();
    } else {
      child.Add(code, next, writer.nextCode);
      lastValue[writer.nextCode] = static_cast<int16_t>(next);
      ++writer.nextCode;
    }
    i = stop;
    start = next;
  }
  writer.Put(end);
  writer.Flush();
}
