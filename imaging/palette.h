// Fixed palettes, the colour matcher every remapping uses, the reader of a picture's colour table
// and the luminance sort. A palette is 768 bytes of red, green, blue triples with a separate count;
// unused triples are 0. Nothing here allocates or keeps state.
#pragma once

#include <cstdint>

constexpr int32_t kPaletteEntries = 256;
// The palette number used for any number above the last fixed palette.
constexpr int32_t kDefaultFixedPalette = 6;

// Fills `palette` (when given, after clearing all 768 bytes) with fixed palette `number` and stores
// its depth in `bits` (when given). Returns the number of colours. Numbers above 9, and
// below 0, mean 6.
int32_t BuildFixedPalette(uint8_t* palette, int32_t* bits, int32_t number);

// Fills `palette` from the colour table of a locked Packed DIB and returns 2 to the power of its
// depth. A depth over 8 gives 0 with `palette` cleared.
int32_t ReadDibPalette(const void* dib, uint8_t* palette);

// The index of the entry nearest to the colour among the first `count` (at most 256): green weighs
// 4, red 3, blue 2; on a tie the earlier entry wins. A count below 1 gives 0.
int32_t NearestPaletteIndex(int32_t red, int32_t green, int32_t blue, const uint8_t* palette,
                            int32_t count);

// The 8-bit luminance of a colour: each weighted channel is divided by 255 on its own, and the
// sum wraps as a byte.
inline uint8_t LuminanceKey(uint32_t red, uint32_t green, uint32_t blue) {
  return static_cast<uint8_t>((red * 77) / 255 + (green * 150) / 255 + (blue * 28) / 255);
}

// Stable in-place sort of the first `count` entries by ascending LuminanceKey. `unused` is
// ignored; callers pass 0.
void SortPaletteByLuminance(uint8_t* palette, int32_t count, int32_t unused = 0);
