// The tiling copies whole row spans: every target row is the cell's row y % cell height, laid
// end to end.
#include "effects/cell_tiling.h"

#include <algorithm>
#include <cstring>

#include "shell/packed_dib.h"

MovableHandle TileCellOverCanvas(MovableHandle cell, int32_t width, int32_t height) {
  ScopedLock source(cell);
  if (!source) return nullptr;
  const BitmapInfoHeader* s = reinterpret_cast<const BitmapInfoHeader*>(source.bytes);
  const int32_t bits = s->biBitCount, cellWidth = s->biWidth, cellHeight = s->biHeight;
  if ((bits != 24 && bits != 32) || cellWidth < 1 || cellHeight < 1) return nullptr;
  const int32_t w = std::max(width, cellWidth), h = std::max(height, cellHeight);
  ScopedBlock tiled(CreatePackedDib(w, h, nullptr, bits));
  ScopedLock target(tiled.handle);
  if (!target) return nullptr;
  const size_t step = static_cast<size_t>(bits / 8);
  const uint32_t sStride = DibStride(cellWidth, bits), tStride = DibStride(w, bits);
  const uint8_t* in = DibBits(source.bytes);
  uint8_t* out = DibBits(target.bytes);
  for (int32_t y = 0; y < h; ++y) {
    // Bottom-up rows: picture row r is stored at height - 1 - r.
    const uint8_t* from = in + static_cast<size_t>(cellHeight - 1 - y % cellHeight) * sStride;
    uint8_t* to = out + static_cast<size_t>(h - 1 - y) * tStride;
    for (int32_t x = 0; x < w; x += cellWidth) {
      const int32_t span = std::min(cellWidth, w - x);
      std::memcpy(to + static_cast<size_t>(x) * step, from, static_cast<size_t>(span) * step);
    }
  }
  return tiled.Release();
}
