#include "effects/zipper.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "shell/packed_dib.h"
#include "tests/support/alloc_sweep.h"
#include "tests/support/effect_frames.h"

namespace {

struct Pictures {
  MovableHandle picture, background;
};

int CopyPictures(void* renderer, MovableHandle* picture, MovableHandle* background) {
  const Pictures* p = static_cast<const Pictures*>(renderer);
  *picture = DuplicateHandle(p->picture);
  *background = DuplicateHandle(p->background);
  if (*picture && *background) return 1;
  MovableFree(*picture);
  MovableFree(*background);
  return 0;
}

BuiltFrames Build(Pictures pictures, ZipperSettings settings) {
  FrameList list{};
  BuildContext context{};
  context.frames = &list;
  const int ok = RunZipperFrames(&context, &settings, CopyPictures, &pictures);
  return TakeFrames(&list, ok);
}

// How far the tooth [first, first + size) of `frame` stands aside from its place in `home`
// (towards negative positions when `sign` is -1): the distance d at which the strip shows home's
// strip moved by d with `back` wherever nothing of it lands; -1 when none fits.
int ToothAside(const PictureValues& frame, const PictureValues& home, const PictureValues& back,
               bool rows, int first, int size, int sign) {
  const int span = rows ? home.width : home.height;
  for (int d = 0; d <= span; ++d) {
    bool fits = true;
    for (int k = first; k < first + size && fits; ++k)
      for (int a = 0; a < span && fits; ++a) {
        const int from = a - sign * d;
        const bool inside = from >= 0 && from < span;
        const auto want = !inside ? (rows ? back.At(a, k) : back.At(k, a))
                                  : (rows ? home.At(from, k) : home.At(k, from));
        fits = (rows ? frame.At(a, k) : frame.At(k, a)) == want;
      }
    if (fits) return d;
  }
  return -1;
}

}  // namespace

TEST(Zipper, ThePullMovesAlongWithTheSquareOfTheFramesLeftAndTheTapesOpenBehindIt) {
  // length - length r^2 / (frames - 1)^2, r = frames - 1 - frame, truncated.
  const struct { int length, frame, frames, pull; } pulls[] = {
      {100, 0, 64, 0}, {100, 63, 64, 100}, {100, 31, 64, 75}, {301, 1, 3, 226}, {40000, 1, 32760, 3}};
  for (const auto& c : pulls)
    EXPECT_EQ(ZipperPull(c.length, c.frame, c.frames), c.pull) << c.length << " " << c.frame;
  EXPECT_EQ(ZipperOpening(10, 0, 50), 5);
  EXPECT_EQ(ZipperOpening(11, 0, 50), 5);
  EXPECT_EQ(ZipperOpening(500, 0, 50), 50);
  EXPECT_EQ(ZipperOpening(5, 10, 50), 0);
  EXPECT_FALSE(ZipperRows(30, 30));
  EXPECT_TRUE(ZipperRows(30, 31));
}

TEST(Zipper, TeethStandAsideByTheirOpeningOverTheBackgroundAndTheLastFrameIsThePictureAtRest) {
  // Wide pictures have columns for teeth opening up and down, tall ones rows opening sideways;
  // the last tooth takes what is left.
  const struct { int width, height, leaf, frames, delay, pause; } cases[] = {
      {40, 9, 4, 6, 3, 50}, {7, 30, 5, 2, 7, 1}, {25, 4, 1, 4, 2, 9}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.width);
    ScopedBlock picture(RandomImage(c.width, c.height, 24, 7));
    ScopedBlock background(RandomImage(c.width, c.height, 24, 8));
    const BuiltFrames b = Build({picture.handle, background.handle},
                                {c.frames, c.leaf, c.delay, c.pause});
    ASSERT_EQ(b.ok, 1);
    ASSERT_EQ(b.frames.size(), static_cast<size_t>(c.frames));
    std::vector<int32_t> delays(c.frames - 1, c.delay);
    delays.push_back(c.delay + c.pause);
    EXPECT_EQ(b.delays, delays);
    const PictureValues home = ReadPicture(picture.handle), back = ReadPicture(background.handle);
    EXPECT_EQ(b.frames.back().values, home.values);
    const bool rows = c.height > c.width;
    const int span = rows ? c.width : c.height, length = rows ? c.height : c.width;
    for (int f = 0; f < c.frames; ++f) {
      const double r = c.frames - 1 - f, last = c.frames - 1;
      const int pull = length - static_cast<int>(std::floor(length * r * r / (last * last)));
      for (int first = 0, k = 0; first < length; first += c.leaf, ++k) {
        const int size = std::min(c.leaf, length - first);
        const int wanted = std::clamp((first + size / 2 - pull) / 2, 0, span);
        EXPECT_EQ(ToothAside(b.frames[f], home, back, rows, first, size, k % 2 ? 1 : -1), wanted)
            << "frame " << f << " tooth " << k;
      }
    }
  }
}

TEST(Zipper, DefaultPageBuildsSixtyFourFramesAndTheSampleIsTheMiddleOne) {
  PageDialog page({696, 698});
  EXPECT_EQ(ZipperEffectKeyColour(page.dialog, 0), 0xFFFFFF);
  EXPECT_EQ(ZipperEffectKeyColour(page.dialog, 1), -1);
  // Delay 5 and Pause 100 as the settings start.
  const BuiltFrames defaults = page.Build(ZipperEffectBuild, {});
  ASSERT_EQ(defaults.ok, 1);
  std::vector<int32_t> delays(63, 5);
  delays.push_back(105);
  EXPECT_EQ(defaults.delays, delays);
  const PictureValues& home = defaults.frames.back();
  for (const PictureValues& f : defaults.frames) {
    EXPECT_EQ(f.width, home.width);
    EXPECT_EQ(f.height, home.height);
  }
  EXPECT_NE(defaults.frames[0].values, home.values);
  EXPECT_EQ(page.Preview(ZipperEffectPreview).values, defaults.frames[31].values);
  const BuiltFrames again = page.Build(ZipperEffectBuild, {});
  for (size_t i = 0; i < defaults.frames.size(); ++i)
    EXPECT_EQ(again.frames[i].values, defaults.frames[i].values) << i;

  // Two frames: the zip open, then at rest; a finer leaf changes the teeth, not the count.
  const BuiltFrames two = page.Build(ZipperEffectBuild, {{708, 2}, {11, 9}, {23, 20}});
  EXPECT_EQ(two.delays, (std::vector<int32_t>{9, 29}));
  EXPECT_EQ(two.frames.back().values, home.values);
  const BuiltFrames fine = page.Build(ZipperEffectBuild, {{708, 64}, {11, 5}, {23, 100}, {718, 1}});
  ASSERT_EQ(fine.frames.size(), 64u);
  EXPECT_NE(fine.frames[10].values, defaults.frames[10].values);
  EXPECT_EQ(fine.frames.back().values, home.values);
}

TEST(Zipper, FailedAllocationsFailTheBuildAndLeakNothing) {
  ScopedBlock picture(RandomImage(9, 6, 24, 5)), background(RandomImage(9, 6, 24, 6));
  EXPECT_TRUE(SweepAllocationFailures(
      [&] { return Build({picture.handle, background.handle}, {3, 2, 1, 1}).ok; }));
}
