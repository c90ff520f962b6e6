// The GIF writer's LZW coder against giflib's encoder on the kind of rectangle a frame after the
// first carries: 400 x 100 of 15 colours in runs with anti-aliased edges, a third of it unchanged
// from the frame before (free to take the transparent index). Bytes per rectangle are reported
// beside the time, for the coder with and without the unchanged pixels' choice.
#include <benchmark/benchmark.h>

#include <gif_lib.h>

#include <cstdint>
#include <vector>

#include "host/writers/gif_lzw.h"

namespace {

constexpr int kWidth = 400, kHeight = 100, kBits = 4, kMark = 15;

struct Rectangle {
  std::vector<uint8_t> pixels, unchanged;
  Rectangle() : pixels(kWidth * kHeight), unchanged(pixels.size()) {
    uint32_t seed = 7;
    for (int y = 0; y < kHeight; ++y)
      for (int x = 0; x < kWidth; ++x) {
        seed = seed * 1103515245u + 12345u;
        const int band = (x / 23 + y / 17) % 5;
        const int edge = (x % 23 == 0) ? static_cast<int>(seed >> 16) % 15 : 0;
        pixels[y * kWidth + x] = static_cast<uint8_t>((band * 3 + edge) % 15);
        unchanged[y * kWidth + x] = (x + y / 3) % 90 < 30;
      }
  }
};

const Rectangle& Sample() {
  static const Rectangle sample;
  return sample;
}

void CompressPlain(benchmark::State& state) {
  std::vector<uint8_t> codes;
  for (auto _ : state) {
    CompressGifPixels(Sample().pixels.data(), nullptr, Sample().pixels.size(), kBits, -1, &codes);
    benchmark::DoNotOptimize(codes.data());
  }
  state.counters["bytes"] = static_cast<double>(codes.size());
}

void CompressWithUnchangedChoice(benchmark::State& state) {
  std::vector<uint8_t> codes;
  for (auto _ : state) {
    CompressGifPixels(Sample().pixels.data(), Sample().unchanged.data(), Sample().pixels.size(),
                      kBits, kMark, &codes);
    benchmark::DoNotOptimize(codes.data());
  }
  state.counters["bytes"] = static_cast<double>(codes.size());
}

size_t counted = 0;
int Count(GifFileType*, const GifByteType*, int n) {
  counted += static_cast<size_t>(n);
  return n;
}

void GiflibEncoder(benchmark::State& state) {
  size_t bytes = 0;
  for (auto _ : state) {
    int code = 0;
    GifFileType* gif = EGifOpen(nullptr, Count, &code);
    ColorMapObject* map = GifMakeMapObject(1 << kBits, nullptr);
    EGifPutScreenDesc(gif, kWidth, kHeight, kBits, 0, map);
    GifFreeMapObject(map);
    const size_t start = counted;
    EGifPutImageDesc(gif, 0, 0, kWidth, kHeight, false, nullptr);
    for (int y = 0; y < kHeight; ++y)
      EGifPutLine(gif, const_cast<GifPixelType*>(&Sample().pixels[y * kWidth]), kWidth);
    bytes = counted - start;
    EGifCloseFile(gif, &code);
  }
  state.counters["bytes"] = static_cast<double>(bytes);  // with the descriptor and block lengths
}

}  // namespace

BENCHMARK(CompressPlain);
BENCHMARK(CompressWithUnchangedChoice);
BENCHMARK(GiflibEncoder);
