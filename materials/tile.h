// Tiles: the tile part of a Material (which matrix file, which tile in it, the loaded picture and
// the area to fill) and the fill that repeats the tile over an area without scaling. A fill never
// fails for want of a tile: the default tile, a bitmap of the program, stands in. The TileRef owns
// its `image`; the default tile's bytes belong to the program and are never freed.
#pragma once

#include <cstddef>
#include <cstdint>

#include "materials/material.h"
#include "platform/memory.h"

constexpr int32_t kDefaultTileResource = 9908;  // 24-bit, 90 by 90

#pragma pack(push, 1)
// The same bytes, in the same order, as `tilePath` to `tileReserved` of a Material.
struct TileRef {
  char path[kTilePathBytes];  // the matrix file, zero-terminated; empty for none
  uint32_t index;             // of the tile in that file, from 0
  MovableHandle image;        // the loaded tile's Packed DIB, or null
  int32_t rect[4];            // left, top, right, bottom: the area to fill
  uint32_t tileReserved;
};
#pragma pack(pop)
static_assert(sizeof(TileRef) == offsetof(Material, reserved1) - offsetof(Material, tilePath));
static_assert(offsetof(TileRef, index) ==
              offsetof(Material, tileIndex) - offsetof(Material, tilePath));
static_assert(offsetof(TileRef, image) ==
              offsetof(Material, tileImage) - offsetof(Material, tilePath));
static_assert(offsetof(TileRef, rect) ==
              offsetof(Material, tileRect) - offsetof(Material, tilePath));

// The tile part of `material`, copied out and back in. The handle moves with the bytes: whoever
// holds the record afterwards owns it.
void GetMaterialTile(const Material* material, TileRef* tile);
void SetMaterialTile(Material* material, const TileRef* tile);

// A new 24-bit Packed DIB of the size of `tile->rect`, tiled from its top-left corner with copies
// of `tile->image`, or of the default tile when the image is missing or is not a picture that can
// be read. Null only when memory fails or the default tile can't be had.
MovableHandle TileFill(const TileRef* tile);

// Copies every field of `source` to `dest`, with a duplicate of the image. Returns 0, with `dest`
// holding no image, when the duplicate fails.
int CopyTileRef(TileRef* dest, const TileRef* source);

// A new 24-bit Packed DIB of the same size and colours as `image`, whatever its depth (colour
// tables are looked up), or null.
MovableHandle ToTrueColour(MovableHandle image);

// Nonzero when `size` bytes hold a whole Packed DIB that the pixel accessors can read: a 40-byte
// header, 1, 4, 8, 24 or 32 bits, positive width and height, its table and rows all present.
int IsReadablePackedDib(const uint8_t* bytes, size_t size);

// The default tile, straight from the program's bitmap, or null when it can't be found.
const uint8_t* DefaultTileBytes(size_t* size);

// Loads the tile of `material` again after its record was made or replaced: the tile follows the
// current matrix group (the setting MatrixLibrary in the data folder), so `tilePath` is set to that
// group's full path and `tileImage` becomes its tile at `tileIndex`, or null. The old image is
// freed.
void ReloadMaterialTile(Material* material);
