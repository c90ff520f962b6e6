// Fixed palettes from tables of levels, the weighted nearest-colour scan and the luminance sort.
// The level sets differ between palettes on purpose (two eight-step sets exist); keep them as
// tabled. Palette entries are red, green, blue triples.
#include "imaging/palette.h"

#include <cstring>

#include "shell/packed_dib.h"

namespace {

const uint8_t kLevels2[] = {0, 255};
const uint8_t kLevels4[] = {0, 85, 170, 255};
const uint8_t kLevels6[] = {0, 51, 102, 153, 204, 255};
const uint8_t kLevels8[] = {0, 36, 72, 108, 144, 180, 216, 255};
// Palette 7 has its own eight-step and seven-step sets.
const uint8_t kLevels8Grey[] = {0, 36, 73, 109, 146, 182, 219, 255};
const uint8_t kLevels7Grey[] = {0, 43, 85, 128, 170, 213, 255};

const uint8_t kGreyRun[32] = {1,   8,   16,  24,  32,  41,  49,  57,  65,  74,  82,
                              90,  98,  106, 115, 123, 131, 139, 148, 156, 164, 172,
                              180, 189, 197, 205, 213, 222, 230, 238, 246, 254};

const uint8_t kWindows16[16][3] = {{0, 0, 0},       {128, 0, 0},   {0, 128, 0},   {128, 128, 0},
                                   {0, 0, 128},     {128, 0, 128}, {0, 128, 128}, {128, 128, 128},
                                   {192, 192, 192}, {255, 0, 0},   {0, 255, 0},   {255, 255, 0},
                                   {0, 0, 255},     {255, 0, 255}, {0, 255, 255}, {255, 255, 255}};

const uint8_t kCubeCorners[8][3] = {{0, 0, 0},   {255, 0, 0},   {0, 255, 0},   {255, 255, 0},
                                    {0, 0, 255}, {255, 0, 255}, {0, 255, 255}, {255, 255, 255}};

// A palette made by nested loops over level sets: red outermost, blue innermost.
struct OrthogonalPalette {
  const uint8_t* red;
  int32_t redCount;
  const uint8_t* green;
  int32_t greenCount;
  const uint8_t* blue;
  int32_t blueCount;
};

struct FixedPaletteRow {
  int32_t colours;
  int32_t bits;
};

const FixedPaletteRow kFixedPalettes[10] = {{2, 1},   {16, 4},  {32, 5},  {64, 6},  {128, 7},
                                            {216, 8}, {256, 8}, {256, 8}, {256, 8}, {8, 3}};

// Writes the cells of the cube in loop order, skipping nothing; returns the number written.
int32_t WriteOrthogonal(uint8_t* out, const OrthogonalPalette& p) {
  int32_t n = 0;
  for (int32_t r = 0; r < p.redCount; ++r)
    for (int32_t g = 0; g < p.greenCount; ++g)
      for (int32_t b = 0; b < p.blueCount; ++b, ++n) {
        out[n * 3] = p.red[r];
        out[n * 3 + 1] = p.green[g];
        out[n * 3 + 2] = p.blue[b];
      }
  return n;
}

void WriteTriples(uint8_t* out, const uint8_t (*table)[3], int32_t count) {
  std::memcpy(out, table, static_cast<size_t>(count) * 3);
}

}  // namespace

int32_t BuildFixedPalette(uint8_t* palette, int32_t* bits, int32_t number) {
  if (number < 0 || number > 9) number = kDefaultFixedPalette;
  const FixedPaletteRow& row = kFixedPalettes[number];
  if (bits) *bits = row.bits;
  if (!palette) return row.colours;
  std::memset(palette, 0, kPaletteBytes);
  switch (number) {
    case 0:
      palette[3] = palette[4] = palette[5] = 255;
      break;
    case 1:
      WriteTriples(palette, kWindows16, 16);
      break;
    case 2:
      WriteOrthogonal(palette, {kLevels4, 4, kLevels4, 4, kLevels2, 2});
      break;
    case 3:
      WriteOrthogonal(palette, {kLevels4, 4, kLevels4, 4, kLevels4, 4});
      break;
    case 4:
      WriteOrthogonal(palette, {kLevels4, 4, kLevels8, 8, kLevels4, 4});
      break;
    case 5:
      // Green outermost, then red, then blue.
      for (int32_t i = 0; i < 216; ++i) {
        palette[i * 3] = kLevels6[(i / 6) % 6];
        palette[i * 3 + 1] = kLevels6[i / 36];
        palette[i * 3 + 2] = kLevels6[i % 6];
      }
      break;
    case 6:
      WriteOrthogonal(palette, {kLevels8, 8, kLevels8, 8, kLevels4, 4});
      break;
    case 7: {
      // 224 coloured cells with the 32-step grey run between cells 111 and 112.
      uint8_t cells[224 * 3];
      WriteOrthogonal(cells, {kLevels7Grey, 7, kLevels8Grey, 8, kLevels4, 4});
      std::memcpy(palette, cells, 112 * 3);
      for (int32_t i = 0; i < 32; ++i) std::memset(palette + (112 + i) * 3, kGreyRun[i], 3);
      std::memcpy(palette + 144 * 3, cells + 112 * 3, 112 * 3);
      break;
    }
    case 8:
      for (int32_t i = 0; i < 256; ++i) std::memset(palette + i * 3, i, 3);
      break;
    case 9:
      WriteTriples(palette, kCubeCorners, 8);
      break;
  }
  return row.colours;
}

int32_t ReadDibPalette(const void* dib, uint8_t* palette) {
  std::memset(palette, 0, kPaletteBytes);
  const BitmapInfoHeader* header = static_cast<const BitmapInfoHeader*>(dib);
  const uint32_t depth = header->biBitCount;
  if (depth > 8) return 0;
  const int32_t entries = 1 << depth;
  const uint8_t* table = static_cast<const uint8_t*>(dib) + kDibHeaderBytes;
  for (int32_t i = 0; i < entries; ++i) {
    palette[i * 3] = table[i * 4 + 2];
    palette[i * 3 + 1] = table[i * 4 + 1];
    palette[i * 3 + 2] = table[i * 4];
  }
  return entries;
}

int32_t NearestPaletteIndex(int32_t red, int32_t green, int32_t blue, const uint8_t* palette,
                            int32_t count) {
  if (count > kPaletteEntries) count = kPaletteEntries;
  // One pass: a distance of 0 is an exact match and the first one found wins, which is what a
  // separate exact-match scan ahead of the weighted pass would return.
  int32_t best = 1000000;
  int32_t bestIndex = 0;
  for (int32_t i = 0; i < count; ++i) {
    const int32_t dr = red - palette[i * 3];
    const int32_t dg = green - palette[i * 3 + 1];
    const int32_t db = blue - palette[i * 3 + 2];
    const int32_t distance = 3 * dr * dr + 4 * dg * dg + 2 * db * db;
    if (distance < best) {
      best = distance;
      bestIndex = i;
      if (distance == 0) break;
    }
  }
  return bestIndex;
}

void SortPaletteByLuminance(uint8_t* palette, int32_t count, int32_t unused) {
  if (count > kPaletteEntries) count = kPaletteEntries;
  if (count < 2) return;
  // Full passes until one swaps nothing; equal keys never swap, so the order is stable.
  bool swapped = true;
  while (swapped) {
    swapped = false;
    for (int32_t i = 0; i + 1 < count; ++i) {
      uint8_t* a = palette + i * 3;
      uint8_t* b = a + 3;
      if (LuminanceKey(b[0], b[1], b[2]) < LuminanceKey(a[0], a[1], a[2])) {
        for (int32_t k = 0; k < 3; ++k) {
          const uint8_t t = a[k];
          a[k] = b[k];
          b[k] = t;
        }
        swapped = true;
      }
    }
  }
}
