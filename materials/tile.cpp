// The Tile fill and the tile part of a Material. Copies are placed at multiples of the tile's size
// from (0, 0) and cut off by the clipped pixel setter, so the tile keeps its pixel size whatever
// the area. A tile that is missing, or whose block doesn't hold the picture its header describes,
// gives way to the default tile.
#include "materials/tile.h"

#include <algorithm>
#include <cstring>

#include "materials/tile_file.h"
#include "materials/data_folder.h"
#include "platform/resource_data.h"
#include "shell/packed_dib.h"

namespace {

// Places copies of the readable picture `tile` over the locked 24-bit `image`.
void PlaceCopies(uint8_t* image, const uint8_t* tile) {
  const BitmapInfoHeader* target = reinterpret_cast<const BitmapInfoHeader*>(image);
  const BitmapInfoHeader* source = reinterpret_cast<const BitmapInfoHeader*>(tile);
  const int32_t tileWidth = source->biWidth, tileHeight = source->biHeight;
  for (int32_t top = 0; top <= target->biHeight; top += tileHeight)
    for (int32_t left = 0; left <= target->biWidth; left += tileWidth) {
      // Only the part of the copy inside the image is visited; the setter clips the rest anyway.
      const int32_t rows = std::min(tileHeight, target->biHeight - top);
      const int32_t columns = std::min(tileWidth, target->biWidth - left);
      for (int32_t y = 0; y < rows; ++y)
        for (int32_t x = 0; x < columns; ++x)
          WriteDibPixel(image, left + x, top + y, ReadDibPixel(tile, x, y));
    }
}

}  // namespace

void GetMaterialTile(const Material* material, TileRef* tile) {
  std::memcpy(tile, material->tilePath, sizeof *tile);
}

void SetMaterialTile(Material* material, const TileRef* tile) {
  std::memcpy(material->tilePath, tile, sizeof *tile);
}

int IsReadablePackedDib(const uint8_t* bytes, size_t size) {
  if (!bytes || size < kDibHeaderBytes) return 0;
  const BitmapInfoHeader* h = reinterpret_cast<const BitmapInfoHeader*>(bytes);
  if (h->biSize != kDibHeaderBytes || h->biWidth <= 0 || h->biHeight <= 0) return 0;
  const uint32_t bits = h->biBitCount;
  if (bits != 1 && bits != 4 && bits != 8 && bits != 24 && bits != 32) return 0;
  const uint64_t need = uint64_t{kDibHeaderBytes} + DibTableBytes(bits) +
                        uint64_t{DibStride(h->biWidth, static_cast<int32_t>(bits))} *
                            static_cast<uint64_t>(h->biHeight);
  return need <= size;
}

const uint8_t* DefaultTileBytes(size_t* size) {
  const uint8_t* bytes = FindBitmapResource(kDefaultTileResource, size);
  return IsReadablePackedDib(bytes, *size) ? bytes : nullptr;
}

MovableHandle TileFill(const TileRef* tile) {
  const int32_t width = tile->rect[2] - tile->rect[0];
  const int32_t height = tile->rect[3] - tile->rect[1];
  ScopedBlock image(CreatePackedDib(width, height, nullptr, 24));
  ScopedLock pixels(image.handle);
  if (!pixels) return nullptr;

  ScopedLock own(tile->image);
  if (own && IsReadablePackedDib(own.bytes, MovableSize(tile->image))) {
    PlaceCopies(pixels.bytes, own.bytes);
    return image.Release();
  }
  size_t size = 0;
  const uint8_t* fallback = DefaultTileBytes(&size);
  if (!fallback) return nullptr;
  PlaceCopies(pixels.bytes, fallback);
  return image.Release();
}

int CopyTileRef(TileRef* dest, const TileRef* source) {
  std::memcpy(dest, source, sizeof *dest);
  if (!source->image) return 1;
  dest->image = DuplicateHandle(source->image);
  return dest->image != nullptr;
}

MovableHandle ToTrueColour(MovableHandle image) {
  ScopedLock source(image);
  if (!source || !IsReadablePackedDib(source.bytes, MovableSize(image))) return nullptr;
  const BitmapInfoHeader* h = reinterpret_cast<const BitmapInfoHeader*>(source.bytes);
  ScopedBlock result(CreatePackedDib(h->biWidth, h->biHeight, nullptr, 24));
  ScopedLock target(result.handle);
  if (!target) return nullptr;
  const uint8_t* table = source.bytes + kDibHeaderBytes;
  const bool indexed = h->biBitCount <= 8;
  for (int32_t y = 0; y < h->biHeight; ++y)
    for (int32_t x = 0; x < h->biWidth; ++x) {
      uint32_t value = ReadDibPixel(source.bytes, x, y);
      if (indexed) {
        // Table entries are blue, green, red, reserved; the pixel value wants 0x00BBGGRR.
        const uint8_t* entry = table + 4 * value;
        value = static_cast<uint32_t>(entry[0]) << 16 | entry[1] << 8 | entry[2];
      }
      WriteDibPixel(target.bytes, x, y, value & 0xFFFFFF);
    }
  return result.Release();
}

void ReloadMaterialTile(Material* material) {
  MovableFree(material->tileImage);
  material->tileImage = nullptr;
  char path[kDataPathSize];
  if (CurrentMatrixPath(path, sizeof path)) {
    std::memset(material->tilePath, 0, sizeof material->tilePath);
    std::memcpy(material->tilePath, path, strnlen(path, sizeof material->tilePath - 1));
  }
  if (material->tilePath[0])
    material->tileImage = LoadTile(material->tilePath, material->tileIndex);
}
