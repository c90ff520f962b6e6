#include "effects/tracks.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "shell/packed_dib.h"
#include "tests/support/alloc_sweep.h"
#include "tests/support/effect_frames.h"

namespace {

constexpr uint32_t kWhite = 0xFFFFFF;

TracksCutSettings Cut(int32_t mode, int32_t tracks, int32_t frames, int32_t bevel = 0,
                      int32_t seed = 15595) {
  return {kWhite, seed, mode, tracks, 4, frames, bevel, 15};
}

MovableHandle CopyPicture(void* picture) {
  return DuplicateHandle(static_cast<MovableHandle>(picture));
}

BuiltFrames Build(MovableHandle picture, TracksCutSettings cut,
                  TracksLoopSettings loop = {3, 50, 1, 98, 95}) {
  FrameList list{};
  BuildContext context{};
  context.frames = &list;
  const int ok = RunTracksFrames(&context, &loop, &cut, CopyPicture, picture);
  return TakeFrames(&list, ok);
}

// The roll s of bar rows or columns [first, first + count) of `frame` against `home`: the pixel at
// distance d along the bar shows home's pixel at d + s, wrapped. -1 when no roll fits them all.
int Roll(const PictureValues& frame, const PictureValues& home, bool horizontal, int first,
         int count) {
  const int length = horizontal ? home.width : home.height;
  for (int s = 0; s < length; ++s) {
    bool fits = true;
    for (int k = first; k < first + count && fits; ++k)
      for (int d = 0; d < length && fits; ++d)
        fits = horizontal ? frame.At(d, k) == home.At((d + s) % length, k)
                          : frame.At(k, d) == home.At(k, (d + s) % length);
    if (fits) return s;
  }
  return -1;
}

}  // namespace

TEST(Tracks, CutHoldsBarsAtLeastFourPixelsAcrossWithTruncatedEdges) {
  const struct {
    int width, height, mode, tracks;
    int count, bevel;  // 0 bars: the cut fails
  } cases[] = {
      {10, 6, 0, 8, 2, 0},        // 10 / 2 is the first quotient of at least 4
      {100, 40, 1, 8, 8, 6},      // upright: the bevel runs along the height
      {100, 40, 4, 256, 10, 15},  // horizontal: 40 rows make 10 bars of 4
      {1030, 5, 2, 999, 256, 0},  // the box's number is held to 256
      {30, 9, 6, 4, 2, 4},        // a mode above 5 is horizontal
      {7, 30, 0, 2, 0, 0},        // 7 / 2 is below 4
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.width);
    ScopedBlock picture(RandomImage(c.width, c.height, 24, 1));
    TracksState state;
    const TracksCutSettings cut = Cut(c.mode, c.tracks, 10);
    ASSERT_EQ(CutTracks(&state, picture.handle, &cut), c.count ? 1 : 0);
    if (!c.count) continue;
    ASSERT_EQ(state.trackCount, c.count);
    EXPECT_EQ(state.bevelThickness, c.bevel);
    const bool horizontal = c.mode > 2;
    int next = 0;
    for (int i = 0; i < c.count; ++i) {
      const TrackBar& bar = state.tracks[i];
      const int across = horizontal ? bar.height : bar.width, speed = std::abs(bar.speed);
      EXPECT_EQ(bar.position, next);
      const int quotient = (horizontal ? c.height : c.width) / c.count;
      EXPECT_TRUE(across == quotient || across == quotient + 1) << i;
      next += across;
      EXPECT_TRUE(speed == 1 || speed == 2 || speed == 4 || speed == 8) << bar.speed;
      EXPECT_TRUE(c.mode == 1 ? bar.speed < 0 : c.mode != 6 || bar.speed > 0) << "mode's sign";
      EXPECT_TRUE(!i || speed != std::abs(state.tracks[i - 1].speed)) << "neighbours differ";
    }
    EXPECT_EQ(next, horizontal ? c.height : c.width);
    FreeTracks(&state);
  }
}

TEST(Tracks, EveryBarIsACyclicRollOfThePictureAtHomeByItsTargetRounded) {
  // Seed 15595 with four speeds draws speeds 2, -1, 8 and 4 for four bars in modes 2 and 5, from
  // the runtime's sequence. Upright bars on 40 rows and 20 frames move 2 pixels per unit of
  // speed and frame; horizontal ones on 30 columns and 7 frames 30 / 7. Frame by frame a bar
  // rolls on by what it still owes, so after frame f it has rolled trunc(target + 0.5) in all:
  // the truncation toward zero keeps a bar moving down or right up to a pixel and a half behind.
  const struct { int width, height, mode, frames; } cases[] = {{24, 40, 2, 20}, {30, 24, 5, 7}};
  const int speeds[4] = {2, -1, 8, 4};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.mode);
    ScopedBlock picture(RandomImage(c.width, c.height, 24, 9));
    const BuiltFrames b = Build(picture.handle, Cut(c.mode, 4, c.frames));
    ASSERT_EQ(b.ok, 1);
    ASSERT_EQ(b.frames.size(), static_cast<size_t>(c.frames) + 1);
    const PictureValues& home = b.frames.back();
    EXPECT_EQ(home.values, ReadPicture(picture.handle).values);
    std::vector<int32_t> delays(c.frames, 3);
    delays.push_back(53);
    EXPECT_EQ(b.delays, delays);
    const bool horizontal = c.mode > 2;
    const int span = horizontal ? c.height : c.width, length = horizontal ? c.width : c.height;
    const double step = static_cast<double>(length) / c.frames;
    for (int f = 0; f < c.frames; ++f)
      for (int k = 0; k < 4; ++k) {
        const int first = span * k / 4, count = span * (k + 1) / 4 - first;
        const int s = Roll(b.frames[f], home, horizontal, first, count);
        ASSERT_GE(s, 0) << "frame " << f << " bar " << k;
        const int rounded = static_cast<int>(step * speeds[k] * f + 0.5);
        EXPECT_EQ(s, (rounded % length + length) % length) << "frame " << f << " bar " << k;
      }
  }
}

TEST(Tracks, DelaysSlowAtTheEndAndThePictureRestsForThePause) {
  // Delay 3, Pause 50. The threshold is Frames times the factor for the mode's direction, / 100.
  const struct {
    int width, height, mode, frames, slowEnd;
    std::vector<int32_t> tail;  // the last delays
  } cases[] = {
      {8, 8, 0, 2, 1, {3, 3, 53}},               // two frames of motion and the rest
      {8, 8, 0, 20, 1, {3, 3, 53}},              // threshold 19: nothing slows
      {8, 8, 0, 100, 1, {3, 3, 6, 53}},          // threshold 98
      {8, 8, 3, 100, 1, {3, 6, 9, 12, 15, 53}},  // threshold 95: the slowing adds up
      {8, 8, 3, 100, 0, {3, 3, 53}},
  };
  for (const auto& c : cases) {
    ScopedBlock picture(RandomImage(c.width, c.height, 24, 2));
    const BuiltFrames b =
        Build(picture.handle, Cut(c.mode, 2, c.frames), {3, 50, c.slowEnd, 98, 95});
    ASSERT_EQ(b.delays.size(), static_cast<size_t>(c.frames) + 1);
    EXPECT_EQ(std::vector<int32_t>(b.delays.end() - c.tail.size(), b.delays.end()), c.tail);
    EXPECT_EQ(b.delays.front(), 3);
  }
}

TEST(Tracks, BevelFadesTheEndsOfTheTravel) {
  // A quarter of 255 per line over four lines: 0, 63, 127, 191 of the picture.
  const struct {
    int width, height, mode, depth;
    uint32_t colour;
    std::vector<uint32_t> lines;  // from the edge inwards, at both edges
  } cases[] = {
      {6, 20, 0, 24, 0x000000, {0xFFFFFF, 0xC0C0C0, 0x808080, 0x404040, 0x000000}},
      {20, 6, 3, 24, 0x0000FF, {0xFFFFFF, 0xC0C0FF, 0x8080FF, 0x4040FF, 0x0000FF}},
      {6, 20, 1, 32, 0xFF102030, {0x00102030, 0x3F102030, 0x7F102030, 0xBF102030, 0xFF102030}},
  };
  for (const auto& c : cases) {
    ScopedBlock picture(c.depth == 32 ? CreatePackedDib32(c.width, c.height)
                                      : CreatePackedDib(c.width, c.height, nullptr, 24));
    {
      ScopedLock lock(picture.handle);
      for (int y = 0; y < c.height; ++y)
        for (int x = 0; x < c.width; ++x) WriteDibPixel(lock.bytes, x, y, c.colour);
    }
    TracksState state{};
    state.mode = c.mode;
    state.bevelThickness = 4;
    state.background = kWhite;
    const PictureValues out = TakePicture(BevelTracks(&state, picture.handle));
    const bool horizontal = c.mode > 2;
    const int across = horizontal ? c.width : c.height;
    for (int line = 0; line < across; ++line) {
      const size_t from = std::min(line, across - 1 - line);
      const uint32_t expected = c.lines[std::min<size_t>(from, 4)];
      EXPECT_EQ(horizontal ? out.At(line, 3) : out.At(3, line), expected) << c.mode << " " << line;
    }
  }
}

TEST(Tracks, SeedDecidesTheFramesAndTheSampleIsOneStepOn) {
  ScopedBlock picture(RandomImage(40, 16, 24, 4));
  const TracksCutSettings cut = Cut(2, 8, 6, 1);
  const BuiltFrames first = Build(picture.handle, cut), again = Build(picture.handle, cut);
  const BuiltFrames other = Build(picture.handle, Cut(2, 8, 6, 1, 77));
  ASSERT_EQ(first.frames.size(), 7u);
  for (size_t i = 0; i < first.frames.size(); ++i)
    EXPECT_EQ(first.frames[i].values, again.frames[i].values);
  EXPECT_NE(first.frames[3].values, other.frames[3].values);
  EXPECT_EQ(TakePicture(MakeTracksSample(&cut, CopyPicture, picture.handle)).values,
            first.frames[1].values);

  ScopedBlock small(RandomImage(8, 6, 24, 5));
  // A failed bevel leaves its frame plain; anything else fails the build. Nothing leaks.
  EXPECT_TRUE(SweepAllocationFailures(
      [&] {
        const BuiltFrames b = Build(small.handle, Cut(0, 2, 3, 1));
        for (const PictureValues& f : b.frames) EXPECT_EQ(f.values.size(), 48u);
        return b.ok;
      },
      100000, true));
}

TEST(Tracks, BuildsFromThePage) {
  PageDialog page({729, 731});
  EXPECT_EQ(TracksEffectKeyColour(page.dialog, 0), 0xFFFFFF);
  // Delay 5 and Pause 100, as the settings start; 20 frames, slowing only past frame 19.
  const BuiltFrames defaults = page.Build(TracksEffectBuild, {});
  ASSERT_EQ(defaults.ok, 1);
  std::vector<int32_t> delays(20, 5);
  delays.push_back(105);
  EXPECT_EQ(defaults.delays, delays);
  const PictureValues& home = defaults.frames.back();
  for (const PictureValues& f : defaults.frames) {
    EXPECT_EQ(f.width, home.width);
    EXPECT_EQ(f.height, home.height);
  }
  EXPECT_EQ(page.Preview(TracksEffectPreview).values, defaults.frames[1].values);

  EXPECT_EQ(page.Build(TracksEffectBuild, {{741, 2}, {11, 7}, {23, 50}}).delays,
            (std::vector<int32_t>{7, 7, 57}));
  const BuiltFrames padded = page.Build(TracksEffectBuild, {{59, 10}});
  EXPECT_EQ(padded.frames.at(0).width, home.width + 20);
  EXPECT_EQ(padded.frames[0].height, home.height + 20);
}
