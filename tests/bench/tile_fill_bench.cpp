// The Tile fill of a sample-sized and a frame-sized area, from the default tile (90 by 90) and from
// a 24-bit tile of 17 by 13, which places many more copies; and loading a tile from a group file.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>

#include "materials/tile.h"
#include "materials/tile_file.h"
#include "tests/support/test_images.h"

namespace {

void BM_TileFill(benchmark::State& state) {
  const int32_t width = static_cast<int32_t>(state.range(0));
  const int32_t height = static_cast<int32_t>(state.range(1));
  ScopedBlock small(state.range(2) ? RandomImage(17, 13, 24, 1) : nullptr);
  TileRef tile = {};
  tile.image = small.handle;
  tile.rect[2] = width;
  tile.rect[3] = height;
  for (auto _ : state) {
    MovableHandle fill = TileFill(&tile);
    benchmark::DoNotOptimize(fill);
    MovableFree(fill);
  }
  state.SetItemsProcessed(state.iterations() * int64_t{width} * height);
}
BENCHMARK(BM_TileFill)->Args({400, 120, 0})->Args({800, 200, 0})->Args({800, 200, 1});

void BM_LoadTile(benchmark::State& state) {
  const std::string path = "/tmp/gm5-bench-tiles.mtx";
  TileList list;
  for (uint32_t i = 0; i < 32; ++i) list.tiles.push_back(RandomImage(90, 90, 24, i));
  WriteMatrixFileAt(path.c_str(), &list, 0, nullptr);
  ClearTileList(&list);
  for (auto _ : state) {
    MovableHandle tile = LoadTile(path.c_str(), 31);  // the last: every item is walked past
    benchmark::DoNotOptimize(tile);
    MovableFree(tile);
  }
  std::remove(path.c_str());
  std::remove((path + ".bak").c_str());
}
BENCHMARK(BM_LoadTile);

}  // namespace
