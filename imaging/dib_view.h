// Checked direct access to the rows of a locked Packed DIB, for loops that must not go through
// the per-pixel accessors. A view is only made for a picture whose header is sane and whose rows
// fit inside its block, so code from outside can never lead a loop past the end. Rows are indexed
// in memory order: row 0 is the bottom of the picture.
#pragma once

#include <cstddef>
#include <cstdint>

struct DibView {
  uint8_t* header;
  uint8_t* table;  // blue, green, red, 0 entries; meaningful for 8 bits or fewer
  uint8_t* bits;   // at the fixed offset 40 plus the full table, as the accessors read it
  int32_t width;
  int32_t height;
  int32_t bitCount;
  uint32_t stride;
};

// Fills `view` for a bottom-up picture of 1, 4, 8, 24 or 32 bits with positive width and height
// whose rows fit in `blockSize` bytes. Returns 0 otherwise.
int OpenDibView(void* header, size_t blockSize, DibView* view);

inline uint8_t* DibRow(const DibView& view, int32_t memoryRow) {
  return view.bits + static_cast<size_t>(memoryRow) * view.stride;
}

// Copies the pixels of one row, leaving the bits of `target` past the last pixel as they were.
void CopyRowPixels(uint8_t* target, const uint8_t* source, int32_t width, int32_t bitCount);
