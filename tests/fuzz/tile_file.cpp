// Matrix group bytes: the whole-group reader and the by-index loader never read past the input or
// allocate more than it holds, a tile the loader finds is one the group reader found too, and any
// tile either gives (whatever its header claims) fills an area without reading outside its block.
#include <stdio.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "materials/tile.h"
#include "materials/tile_file.h"

namespace {

void FillWith(MovableHandle image) {
  TileRef tile = {};
  tile.image = image;
  tile.rect[2] = 23;
  tile.rect[3] = 11;
  MovableHandle fill = TileFill(&tile);
  if (!fill) abort();  // the default tile stands in for anything unreadable
  MovableFree(fill);
}

int SameBlock(MovableHandle a, MovableHandle b) {
  ScopedLock la(a), lb(b);
  return la && lb && MovableSize(a) == MovableSize(b) &&
         std::memcmp(la.bytes, lb.bytes, MovableSize(a)) == 0;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 2) return 0;
  const uint32_t index = data[0] % 4;
  FILE* file = fmemopen(const_cast<uint8_t*>(data + 1), size - 1, "rb");
  if (!file) return 0;
  TileList list;
  const int read = ReadMatrixFrom(file, &list);
  rewind(file);
  MovableHandle tile = LoadTileFrom(file, index);
  fclose(file);
  if (tile && read) {
    int found = 0;
    for (MovableHandle t : list.tiles) found |= SameBlock(t, tile);
    if (!found) abort();
  }
  for (MovableHandle t : list.tiles) FillWith(t);
  FillWith(tile);
  MovableFree(tile);
  ClearTileList(&list);
  return 0;
}
