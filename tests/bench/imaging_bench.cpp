// Throughput of the colour pipeline on a standard frame set that this program draws itself: 64
// frames of 800 x 200 of shadowed text on white, and the same text over a colourful plasma. The
// same job, one global 256-colour palette with Floyd-Steinberg dithering or none, is timed for
// ImageMagick and for ffmpeg's palettegen and paletteuse on the same frames, single-threaded,
// when they are installed (scripts/bench-peers installs them).
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include <sys/resource.h>
#include <unistd.h>

#include "imaging/colour_matcher.h"
#include "imaging/dither.h"
#include "imaging/octree_quantiser.h"
#include "shell/packed_dib.h"
#include "tests/support/imaging_reference.h"

namespace {

constexpr int32_t kFrames = 64, kWidth = 800, kHeight = 200;
constexpr double kPixels = double{kFrames} * kWidth * kHeight;

// Coverage of a stroke font: each letter is a few capsules on a 6 x 8 grid.
struct Capsule {
  float x0, y0, x1, y1;
};
const Capsule kLetters[][4] = {
    {{5, 1, 1, 1}, {1, 1, 1, 7}, {1, 7, 5, 7}, {5, 7, 5, 4}},  // G
    {{1, 1, 1, 7}, {1, 7, 5, 7}, {1, 7, 1, 7}, {1, 7, 1, 7}},  // L
    {{1, 1, 3, 4}, {5, 1, 3, 4}, {3, 4, 3, 7}, {3, 7, 3, 7}},  // Y
    {{1, 1, 1, 7}, {1, 1, 5, 1}, {5, 1, 5, 4}, {5, 4, 1, 4}},  // P
    {{1, 1, 1, 7}, {5, 1, 5, 7}, {1, 4, 5, 4}, {1, 4, 1, 4}},  // H
    {{1, 1, 1, 7}, {1, 1, 5, 7}, {5, 7, 5, 1}, {5, 1, 5, 1}},  // N
};

float SegmentDistance(float px, float py, const Capsule& c) {
  const float dx = c.x1 - c.x0, dy = c.y1 - c.y0;
  const float len = dx * dx + dy * dy;
  float t = len > 0 ? ((px - c.x0) * dx + (py - c.y0) * dy) / len : 0;
  t = t < 0 ? 0 : t > 1 ? 1 : t;
  const float ex = px - (c.x0 + t * dx), ey = py - (c.y0 + t * dy);
  return std::sqrt(ex * ex + ey * ey);
}

// A coverage mask twice the frame width, so that frames can scroll through it.
std::vector<float> TextMask(float radius, float cell) {
  const int32_t w = kWidth * 2;
  std::vector<float> mask(static_cast<size_t>(w) * kHeight, 0.0f);
  const int32_t letters = static_cast<int32_t>(w / (cell * 6.5f));
  for (int32_t i = 0; i < letters; ++i) {
    const float ox = 10 + i * cell * 6.5f, oy = 30;
    for (const Capsule& s : kLetters[i % 6]) {
      const Capsule c = {ox + s.x0 * cell, oy + s.y0 * cell, ox + s.x1 * cell, oy + s.y1 * cell};
      const int32_t x0 = static_cast<int32_t>(std::fmin(c.x0, c.x1) - radius - 2);
      const int32_t x1 = static_cast<int32_t>(std::fmax(c.x0, c.x1) + radius + 2);
      const int32_t y0 = static_cast<int32_t>(std::fmin(c.y0, c.y1) - radius - 2);
      const int32_t y1 = static_cast<int32_t>(std::fmax(c.y0, c.y1) + radius + 2);
      for (int32_t y = std::max(y0, 0); y < std::min(y1, kHeight); ++y)
        for (int32_t x = std::max(x0, 0); x < std::min(x1, w); ++x) {
          const float cover = std::fmin(std::fmax(radius - SegmentDistance(x, y, c) + 0.5f, 0), 1);
          float& m = mask[static_cast<size_t>(y) * w + x];
          m = std::fmax(m, cover);
        }
    }
  }
  return mask;
}

struct FrameSet {
  std::vector<MovableHandle> frames;
  std::unique_ptr<FrameListView> list;  // the same pictures as a FrameList
  std::string folder;                   // the frames as binary PPM files, for the peers
  ~FrameSet() {
    list.reset();
    for (MovableHandle h : frames) MovableFree(h);
    if (!folder.empty()) std::system(("rm -rf '" + folder + "'").c_str());
  }
};

// Text in a hue that turns with the frame, a soft grey shadow below it, on white or on plasma.
void DrawFrames(FrameSet* set, bool plasma) {
  const std::vector<float> text = TextMask(4.0f, 16.0f);
  // The shadow: the same strokes, wider and fainter, offset down and right.
  const std::vector<float> shadow = TextMask(7.0f, 16.0f);
  char folder[] = "/tmp/gm5benchXXXXXX";
  if (mkdtemp(folder)) set->folder = folder;
  std::vector<uint8_t> ppm(static_cast<size_t>(kWidth) * kHeight * 3);
  for (int32_t f = 0; f < kFrames; ++f) {
    MovableHandle image = CreatePackedDib(kWidth, kHeight, nullptr, 24);
    ScopedLock lock(image);
    const double hue = f * 2 * 3.14159265 / kFrames;
    const double fr = 127.5 + 127.5 * std::sin(hue), fg = 127.5 + 127.5 * std::sin(hue + 2.1),
                 fb = 127.5 + 127.5 * std::sin(hue + 4.2);
    for (int32_t y = 0; y < kHeight; ++y) {
      uint8_t* row =
          DibBits(lock.bytes) + static_cast<size_t>(kHeight - 1 - y) * DibStride(kWidth, 24);
      for (int32_t x = 0; x < kWidth; ++x) {
        double r = 255, g = 255, b = 255;
        if (plasma) {
          const double v = std::sin(x * 0.021 + f * 0.2) + std::sin(y * 0.033 - f * 0.13) +
                           std::sin((x + y) * 0.014 + f * 0.07);
          r = 127.5 + 127.5 * std::sin(v * 1.7);
          g = 127.5 + 127.5 * std::sin(v * 1.7 + 2.0);
          b = 127.5 + 127.5 * std::sin(v * 1.7 + 4.0);
        }
        const int32_t sx = x + f * 6 - 6, sy = y - 6;
        const float s =
            sy >= 0 ? 0.55f * shadow[static_cast<size_t>(sy) * kWidth * 2 + sx + 12] : 0;
        r *= 1 - s, g *= 1 - s, b *= 1 - s;
        const float t = text[static_cast<size_t>(y) * kWidth * 2 + x + f * 6];
        r = r * (1 - t) + fr * t, g = g * (1 - t) + fg * t, b = b * (1 - t) + fb * t;
        const uint8_t rgb[3] = {static_cast<uint8_t>(r), static_cast<uint8_t>(g),
                                static_cast<uint8_t>(b)};
        row[x * 3] = rgb[2], row[x * 3 + 1] = rgb[1], row[x * 3 + 2] = rgb[0];
        std::memcpy(&ppm[(static_cast<size_t>(y) * kWidth + x) * 3], rgb, 3);
      }
    }
    set->frames.push_back(image);
    if (set->folder.empty()) continue;
    char name[64];
    std::snprintf(name, sizeof name, "/frame%03d.ppm", f);
    if (FILE* file = std::fopen((set->folder + name).c_str(), "wb")) {
      std::fprintf(file, "P6\n%d %d\n255\n", kWidth, kHeight);
      std::fwrite(ppm.data(), 1, ppm.size(), file);
      std::fclose(file);
    }
  }
}

FrameSet& Frames(bool plasma) {
  static FrameSet sets[2];
  FrameSet& set = sets[plasma];
  if (set.frames.empty()) {
    DrawFrames(&set, plasma);
    set.list = std::make_unique<FrameListView>(set.frames.data(), kFrames);
  }
  return set;
}

void Rate(benchmark::State& state) {
  state.counters["MP/s"] =
      benchmark::Counter(kPixels / 1e6 * state.iterations(), benchmark::Counter::kIsRate);
}

int32_t Quantise(FrameSet& set, uint8_t* palette) {
  int32_t request = 256;
  QuantiseFrames(&request, palette, &set.list->list);
  return request;
}

void BM_QuantiseFrames(benchmark::State& state) {
  FrameSet& set = Frames(state.range(0));
  uint8_t palette[768];
  int32_t colours = 0;
  for (auto _ : state) colours = Quantise(set, palette);
  state.counters["colours"] = colours;
  Rate(state);
}

// Dithers (range 1 = 1) or remaps every frame to the set's own palette.
void MapFrames(benchmark::State& state, bool dither, bool quantiseToo) {
  FrameSet& set = Frames(state.range(0));
  uint8_t palette[768];
  int32_t colours = Quantise(set, palette);
  for (auto _ : state) {
    if (quantiseToo) colours = Quantise(set, palette);
    // One matcher for the palette of the whole animation, as a build keeps it.
    ColourMatcher matcher;
    if (!OpenColourMatcher(&matcher, palette, colours)) state.SkipWithError("no memory");
    for (MovableHandle frame : set.frames) {
      MovableHandle out =
          dither ? DitherToPalette(frame, palette, 8, colours, kDefaultRemapSettings, &matcher)
                 : RemapToPalette(frame, palette, 8, colours, kDefaultRemapSettings, &matcher);
      if (!out) state.SkipWithError("mapping failed");
      MovableFree(out);
    }
  }
  Rate(state);
}

void BM_DitherToPalette(benchmark::State& state) {
  MapFrames(state, true, false);
}
void BM_RemapToPalette(benchmark::State& state) {
  MapFrames(state, false, false);
}
void BM_QuantiseAndDither(benchmark::State& state) {
  MapFrames(state, true, true);
}
void BM_QuantiseAndRemap(benchmark::State& state) {
  MapFrames(state, false, true);
}

bool Installed(const char* tool) {
  return std::system((std::string("command -v ") + tool + " >/dev/null 2>&1").c_str()) == 0;
}

// Processor time, user and system, of all finished child processes.
double ChildSeconds() {
  rusage usage{};
  getrusage(RUSAGE_CHILDREN, &usage);
  return usage.ru_utime.tv_sec + usage.ru_stime.tv_sec +
         (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

// Runs a peer's whole job on the frame files. The time is the processor time of its processes,
// which, like our own figures, does not count waiting for a busy machine.
void RunPeer(benchmark::State& state, const char* tool, const std::string& commands) {
  FrameSet& set = Frames(state.range(0));
  if (!Installed(tool) || set.folder.empty()) {
    state.SkipWithError("not installed; run scripts/bench-peers");
    return;
  }
  const std::string script = "cd '" + set.folder + "' && " + commands;
  for (auto _ : state) {
    const double before = ChildSeconds();
    if (std::system(script.c_str()) != 0) state.SkipWithError("the command failed");
    state.SetIterationTime(ChildSeconds() - before);
  }
  Rate(state);
}

// range(1): 1 for Floyd-Steinberg, 0 for no dither.
void BM_ImageMagick(benchmark::State& state) {
  const std::string dither = state.range(1) ? "-dither FloydSteinberg" : "+dither";
  RunPeer(state, "convert-im6.q16",
          "MAGICK_THREAD_LIMIT=1 convert-im6.q16 frame*.ppm " + dither + " -colors 256 +map null:");
}

void BM_Ffmpeg(benchmark::State& state) {
  const std::string dither = state.range(1) ? "floyd_steinberg" : "none";
  const std::string input = "ffmpeg -v error -threads 1 -filter_threads 1 -i frame%03d.ppm ";
  RunPeer(state, "ffmpeg",
          input + "-vf palettegen=max_colors=256:reserve_transparent=0 -y palette.png && " + input +
              "-i palette.png -lavfi paletteuse=dither=" + dither + " -f null -");
}

}  // namespace

// Argument 0: 0 = text on white, 1 = text on plasma.
BENCHMARK(BM_QuantiseFrames)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_DitherToPalette)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RemapToPalette)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_QuantiseAndDither)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_QuantiseAndRemap)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ImageMagick)
    ->ArgsProduct({{0, 1}, {1, 0}})
    ->Iterations(2)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Ffmpeg)
    ->ArgsProduct({{0, 1}, {1, 0}})
    ->Iterations(2)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
