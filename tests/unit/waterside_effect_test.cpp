#include "effects/waterside.h"

#include <gtest/gtest.h>

#include <vector>

#include "controls/page_setup.h"
#include "controls/value_controls.h"
#include "documents/settings.h"
#include "materials/material_button.h"
#include "shell/crt_random.h"
#include "shell/packed_dib.h"
#include "tests/support/alloc_sweep.h"
#include "tests/support/test_images.h"

namespace {

constexpr uint32_t kWater = 0xFFFFFF;

// A width by height picture of `kWater` with the pixels of `marks` set to their colours.
MovableHandle Picture(int32_t width, int32_t height, int32_t depth,
                      std::vector<std::pair<int, uint32_t>> marks, uint32_t fill = kWater) {
  MovableHandle image = CreatePackedDib(width, height, nullptr, depth);
  ScopedLock lock(image);
  for (int32_t y = 0; y < height; ++y)
    for (int32_t x = 0; x < width; ++x) WriteDibPixel(lock.bytes, x, y, fill);
  for (const auto& m : marks) WriteDibPixel(lock.bytes, m.first % width, m.first / width, m.second);
  return image;
}

struct Built {
  int ok = 0;
  std::vector<PictureValues> frames;
  std::vector<int32_t> delays;
};

MovableHandle CopyPicture(void* picture, const WatersideFrameParams*) {
  return DuplicateHandle(static_cast<MovableHandle>(picture));
}

Built Build(MovableHandle picture, WatersideLoopSettings loop) {
  FrameList list{};
  BuildContext context{};
  context.frames = &list;
  crt::srand(crt::kStartSeed);  // as a fresh use of the plug-in
  Built run;
  run.ok = RunWatersideFrames(&context, &loop, CopyPicture, picture);
  {
    ScopedLock lock(list.records);
    for (int32_t i = 0; lock && i < list.count; ++i) {
      const FrameRecord& r = reinterpret_cast<const FrameRecord*>(lock.bytes)[i];
      run.frames.push_back(ReadPicture(r.image));
      run.delays.push_back(r.delay);
    }
  }
  FreeFrameList(&list);
  return run;
}

// Rows [0, rows) of a picture, their first `width` pixels (all of them by default).
std::vector<uint32_t> TopRows(const PictureValues& p, int32_t rows, int32_t width = 0) {
  std::vector<uint32_t> top;
  for (int32_t y = 0; y < rows; ++y)
    for (int32_t x = 0; x < (width ? width : p.width); ++x) top.push_back(p.At(x, y));
  return top;
}

}  // namespace

TEST(Waterside, CropTakesOnlyBottomRowsOfBackgroundAndNeverRowZero) {
  const struct {
    int depth;
    std::vector<std::pair<int, uint32_t>> marks;  // index y * 4 + x
    uint32_t fill;
    int rows;
  } cases[] = {
      {24, {}, kWater, 1},                       // all background: one row stays
      {24, {{4 * 5 + 3, 0x000001}}, kWater, 6},  // a mark in row 5 keeps rows 0 to 5
      {24, {{4 * 9, 0x000000}}, kWater, 10},     // the last row differs: nothing goes
      {32, {{4 * 2, 0x7F000000 | kWater}}, 0xFF000000 | kWater, 1},  // alpha is not compared
  };
  for (const auto& c : cases) {
    ScopedBlock picture(Picture(4, 10, c.depth, c.marks, c.fill));
    const PictureValues in = ReadPicture(picture.handle);
    const PictureValues out = TakePicture(CropBackgroundRows(picture.handle, 0xAB000000 | kWater));
    EXPECT_EQ(out.bits, c.depth);
    EXPECT_EQ(out.width, 4);
    ASSERT_EQ(out.height, c.rows);
    EXPECT_EQ(out.values, TopRows(in, c.rows));
  }
}

TEST(Waterside, RippleRowsTakeTheirSourcesFromTheSineOfThePhase) {
  // Row t of the result shows row sources[t] of the picture; computed from the ripple's formula
  // in doubles. At 28 rows the last row's source lies below the picture in phase 1 of 2 and above
  // the guard in phase 0 of 1: both keep their own row.
  const struct {
    int height, phase, phases;
    std::vector<int> sources;
  } cases[] = {
      {28, 0, 1, {0,  1,  2,  4,  5,  6,  8,  9,  10, 11, 13, 14, 15, 15,
                  16, 16, 16, 17, 17, 17, 18, 21, 24, 23, 24, 23, 27, 27}},
      {28, 1, 2, {0,  1,  2,  2,  3,  4,  4,  5,  6,  7,  7,  8,  9,  11,
                  12, 14, 16, 17, 19, 21, 22, 21, 20, 23, 24, 27, 25, 27}},
      {42, 3, 40, {2,  3,  5,  6,  7,  8,  9,  11, 12, 13, 14, 15, 15, 16,
                   17, 18, 18, 18, 19, 19, 20, 20, 20, 21, 21, 23, 24, 27,
                   29, 31, 32, 31, 30, 32, 36, 35, 36, 35, 36, 39, 39, 41}},
      {13, 0, 1, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}},  // under 14 rows: no amplitude
  };
  for (const auto& c : cases) {
    std::vector<std::pair<int, uint32_t>> rows;
    for (int y = 0; y < c.height; ++y) rows.push_back({y * 3 + 1, static_cast<uint32_t>(y)});
    ScopedBlock picture(Picture(3, c.height, 24, rows));
    const PictureValues out = TakePicture(ShiftRippleRows(picture.handle, c.phase, c.phases));
    ASSERT_EQ(out.height, c.height);
    for (int t = 0; t < c.height; ++t) {
      EXPECT_EQ(out.At(1, t), static_cast<uint32_t>(c.sources[t])) << c.height << " row " << t;
      EXPECT_EQ(out.At(0, t), kWater) << "whole rows move";
    }
  }
  // The phase is a fraction of a turn: phase i of n and 2i of 2n are the same picture.
  ScopedBlock noise(RandomImage(5, 60, 24, 3));
  for (int i : {1, 7, 19}) {
    ScopedBlock a(ShiftRippleRows(noise.handle, i, 40)),
        b(ShiftRippleRows(noise.handle, 2 * i, 80));
    EXPECT_TRUE(SameBlocks(a.handle, b.handle)) << i;
  }
}

TEST(Waterside, JoinHangsTheRippleMirroredBelowThePicture) {
  ScopedBlock top(RandomImage(2, 3, 24, 4)), bottom(RandomImage(4, 2, 24, 5));
  const PictureValues p = ReadPicture(top.handle), r = ReadPicture(bottom.handle);
  const PictureValues j = TakePicture(JoinMirrored(top.handle, bottom.handle));
  ASSERT_EQ(j.width, 4);
  ASSERT_EQ(j.height, 5);
  for (int y = 0; y < 5; ++y)
    for (int x = 0; x < 4; ++x) {
      const uint32_t expected = y < 3 ? (x < 2 ? p.At(x, y) : 0u) : r.At(x, 4 - y);
      EXPECT_EQ(j.At(x, y), expected) << x << "," << y;
    }
}

TEST(Waterside, DelaysSpreadFromThreeQuartersByTheUnseededGenerator) {
  const struct {
    int32_t delay;
    std::vector<int32_t> delays;  // from a fresh runtime's sequence 41, 18467, 6334, 26500, 19169
    int draws;
  } cases[] = {{10, {8, 9, 11, 7, 11}, 5}, {5, {4, 4, 3, 3, 4}, 5}, {2, {1, 1}, 2}, {1, {1, 1}, 0}};
  for (const auto& c : cases) {
    crt::srand(crt::kStartSeed);
    std::vector<int32_t> delays;
    for (size_t i = 0; i < c.delays.size(); ++i) delays.push_back(WatersideDelay(c.delay));
    EXPECT_EQ(delays, c.delays);
    crt::srand(crt::kStartSeed);
    for (int i = 0; i < c.draws; ++i) crt::rand();
    const int next = crt::rand();
    crt::srand(crt::kStartSeed);
    for (size_t i = 0; i < c.delays.size(); ++i) WatersideDelay(c.delay);
    EXPECT_EQ(crt::rand(), next) << "a delay of " << c.delay << " draws " << c.draws;
  }
}

TEST(Waterside, FramesKeepTheCroppedPictureOnTopOfEveryPhase) {
  // Text rows 2 to 9 of a 30-row picture; rows 10 on are water and are cropped.
  std::vector<std::pair<int, uint32_t>> marks;
  for (int i = 0; i < 40; ++i) marks.push_back({2 * 20 + (i * 7) % 160, 0x203040u + i});
  ScopedBlock picture(Picture(20, 30, 24, marks));
  const PictureValues in = ReadPicture(picture.handle);

  const Built run = Build(picture.handle, {1, 5, 6, kWater});
  ASSERT_EQ(run.ok, 1);
  ASSERT_EQ(run.frames.size(), 6u);
  EXPECT_EQ(run.delays, (std::vector<int32_t>{4, 4, 3, 3, 4, 3}));
  for (const PictureValues& f : run.frames) {
    ASSERT_EQ(f.width, 20);
    ASSERT_EQ(f.height, 20) << "ten rows and their mirror image";
    EXPECT_EQ(TopRows(f, 10), TopRows(in, 10));
  }
  EXPECT_NE(run.frames[1].values, run.frames[4].values) << "the water moves";

  const Built again = Build(picture.handle, {1, 5, 6, kWater});
  for (size_t i = 0; i < run.frames.size(); ++i)
    EXPECT_EQ(again.frames[i].values, run.frames[i].values);

  // A still build is phase 0 of 1, which is the first phase of any animation; its delay is plain.
  const Built still = Build(picture.handle, {0, 5, 6, kWater});
  ASSERT_EQ(still.frames.size(), 1u);
  EXPECT_EQ(still.delays, (std::vector<int32_t>{5}));
  EXPECT_EQ(still.frames[0].values, run.frames[0].values);

  ScopedBlock small(Picture(6, 8, 24, {{13, 0}}));
  const PictureValues tiny = ReadPicture(small.handle);
  // A failed crop, ripple or join leaves its frame plain; only the render, a copy or an append
  // fails the build. Either way nothing leaks.
  EXPECT_TRUE(SweepAllocationFailures(
      [&] {
        const Built b = Build(small.handle, {1, 4, 2, kWater});
        for (const PictureValues& f : b.frames) EXPECT_EQ(TopRows(f, 3, 6), TopRows(tiny, 3));
        return b.ok;
      },
      100000, true));
}

TEST(Waterside, BuildsFromThePage) {
  // A control changed on Windows stores its value in the settings: start and end with defaults.
  ResetSettings();
  WindowHandle dialog = CreateValueDialog();
  ASSERT_NE(dialog, nullptr);
  for (int32_t id : {467, 469})
    DialogSetUserData(DialogItem(dialog, id), CreateButtonMaterial(0x404040));
  const auto build = [&](std::vector<std::pair<int32_t, int32_t>> values, Built* run) {
    for (const auto& v : values) SetDialogItemInt(dialog, v.first, v.second, 0);
    FrameList list{};
    BuildContext context{};
    context.dialog = dialog;
    context.frames = &list;
    crt::srand(crt::kStartSeed);
    run->ok = WatersideEffectBuild(&context);
    {
      ScopedLock lock(list.records);
      for (int32_t i = 0; lock && i < list.count; ++i) {
        const FrameRecord& r = reinterpret_cast<const FrameRecord*>(lock.bytes)[i];
        run->frames.push_back(ReadPicture(r.image));
        run->delays.push_back(r.delay);
      }
    }
    FreeFrameList(&list);
  };
  EXPECT_EQ(WatersideEffectKeyColour(dialog, 0), 0xFFFFFF);
  EXPECT_EQ(WatersideEffectKeyColour(dialog, 1), -1);

  Built defaults, fewer, sharp, padded;
  build({{11, 5}}, &defaults);  // Delay 5, as the settings start
  ASSERT_EQ(defaults.ok, 1);
  ASSERT_EQ(defaults.frames.size(), 40u);
  EXPECT_EQ(std::vector<int32_t>(defaults.delays.begin(), defaults.delays.begin() + 5),
            (std::vector<int32_t>{4, 4, 3, 3, 4}));
  const PictureValues& first = defaults.frames[0];
  ASSERT_EQ(first.height % 2, 0);
  for (const PictureValues& f : defaults.frames) {
    ASSERT_EQ(f.width, first.width);
    ASSERT_EQ(f.height, first.height);
    EXPECT_EQ(TopRows(f, f.height / 2), TopRows(first, f.height / 2)) << "the text holds still";
  }

  BuildContext preview{};
  preview.dialog = dialog;
  preview.sample = 1;
  ASSERT_EQ(WatersideEffectPreview(&preview), 1);
  EXPECT_EQ(TakePicture(preview.image).values, first.values) << "the sample is phase 0";

  build({{479, 2}, {11, 20}}, &fewer);
  EXPECT_EQ(fewer.delays, (std::vector<int32_t>{16, 22}));
  // Padding widens the picture on both sides, but only its top grows: the bottom is water. (A
  // soft shadow would reach further into a wider margin, so the shadow is sharp here.)
  build({{481, 0}, {59, 5}}, &sharp);
  build({{59, 15}}, &padded);
  ASSERT_EQ(padded.frames.size(), 2u);
  EXPECT_EQ(padded.frames[0].width, sharp.frames[0].width + 20);
  EXPECT_EQ(padded.frames[0].height, sharp.frames[0].height + 20);

  for (int32_t id : {467, 469}) MovableFree(ButtonMaterialHandle(DialogItem(dialog, id)));
  DialogDestroy(dialog);
  ResetSettings();
}
