#include "effects/unplugged_tv.h"

#include <gtest/gtest.h>

#include <vector>

#include "controls/page_setup.h"
#include "controls/value_controls.h"
#include "documents/settings.h"
#include "shell/crt_random.h"
#include "shell/packed_dib.h"
#include "tests/support/alloc_sweep.h"
#include "tests/support/sized_runs.h"

namespace {

constexpr SwellFactors kSwell = {20, 75, 150, 20};

// A 32-bit picture of one colour whose alpha is 255 inside the centred box of `inner` pixels and
// `outerAlpha` elsewhere.
MovableHandle Picture(int32_t w, int32_t h, uint32_t colour, int32_t inner, uint32_t outerAlpha) {
  MovableHandle image = CreatePackedDib32(w, h);
  ScopedLock lock(image);
  for (int32_t y = 0; y < h; ++y)
    for (int32_t x = 0; x < w; ++x) {
      const bool in =
          2 * x >= w - inner && 2 * x < w + inner && 2 * y >= h - inner && 2 * y < h + inner;
      WriteDibPixel(lock.bytes, x, y, colour | (in ? 255u : outerAlpha) << 24);
    }
  return image;
}

uint32_t Pixel(MovableHandle image, int32_t x, int32_t y) {
  ScopedLock lock(image);
  return lock ? ReadDibPixel(lock.bytes, x, y) : 0xDEADBEEF;
}

int32_t Width(MovableHandle image) {
  ScopedLock lock(image);
  return lock ? reinterpret_cast<const BitmapInfoHeader*>(lock.bytes)->biWidth : -1;
}

}  // namespace

TEST(UnpluggedTv, TimingOverlayAndMeanColourFollowTheirRules) {
  struct Timing {
    int32_t frames, delay, sizeFactor, perPhase, dotFrames, dotDelay;
  } timings[] = {{48, 10, 20, 16, 16, 15},
                 {23, 7, 20, 8, 8, 10},
                 {48, 10, 0, 16, 0, 15},
                 {32760, 3, 20, 10920, 10920, 4}};
  for (const Timing& t : timings) {
    UnpluggedTvState state{};
    SwellFactors swell = kSwell;
    swell.size = t.sizeFactor;
    SetUnpluggedTvTiming(&state, t.frames, t.delay, &swell);
    EXPECT_EQ(state.squeezeFrames, t.perPhase) << t.frames;
    EXPECT_EQ(state.lineFrames, t.perPhase);
    EXPECT_EQ(state.dotFrames, t.dotFrames);
    EXPECT_EQ(state.squeezeDelay, t.delay);
    EXPECT_EQ(state.dotDelay, t.dotDelay);
  }

  // Overlay: a 2 x 2 source centred on a 7 x 5 target lands at (2, 1); terms truncate apart.
  ScopedBlock target(Picture(7, 5, 0x0000C8, 0, 40)), source(Picture(2, 2, 0x000064, 0, 128));
  {
    ScopedLock t(target.handle), s(source.handle);
    OverlayCentred(t.bytes, s.bytes);
  }
  // red: 200 * 127 / 255 = 99, 100 * 128 / 255 = 50; alpha max(128, 40).
  EXPECT_EQ(Pixel(target.handle, 2, 1), 0x80000095u);
  EXPECT_EQ(Pixel(target.handle, 3, 2), 0x80000095u);
  const int32_t outside[4][2] = {{1, 1}, {4, 1}, {2, 0}, {2, 3}};
  for (const auto& p : outside)
    EXPECT_EQ(Pixel(target.handle, p[0], p[1]), 0x280000C8u) << p[0] << "," << p[1];

  // Mean colour: only pixels of alpha 255 count; none counted gives 0, an unlockable picture white.
  ScopedBlock half(Picture(4, 2, 0x102030, 0, 0));
  {
    ScopedLock lock(half.handle);
    WriteDibPixel(lock.bytes, 0, 0, 0xFF0A0B0Cu);
    WriteDibPixel(lock.bytes, 3, 1, 0xFF0C0D11u);
  }
  EXPECT_EQ(PictureMeanColour(half.handle), 0x0B0C0Eu);
  ScopedBlock none(Picture(3, 3, 0x102030, 0, 254));
  EXPECT_EQ(PictureMeanColour(none.handle), 0u);
  EXPECT_EQ(PictureMeanColour(nullptr), 0xFFFFFFu);
}

TEST(UnpluggedTv, DotSwellsOnceBrightensToItsCentreAndFadesAtTheRim) {
  // Canvas height 200: full size 40; softness 20 gives soft 2, side 12 + size.
  struct Case {
    int32_t dotFrames, step, side;
  } cases[] = {{16, 0, 12 + 5},   {16, 7, 12 + 40}, {16, 8, 12 + 45},
               {16, 15, 12 + 10}, {1, 0, 12 + 40},  {0, 0, 12 + 40}};
  for (const Case& c : cases) {
    for (int32_t square : {0, 1}) {
      ScopedBlock dot(MakeSwellDot(0x2040FF, 200, c.dotFrames, c.step, square, &kSwell));
      ASSERT_EQ(Width(dot.handle), c.side) << c.dotFrames << ":" << c.step;
    }
  }
  // A large dot: the corners have the rim colour (three quarters of each channel) and no cover,
  // the centre nearly the dot colour at full cover.
  for (int32_t square : {0, 1}) {
    ScopedBlock dot(MakeSwellDot(0x2040FF, 400, 16, 7, square, &kSwell));
    const int32_t side = Width(dot.handle);
    ASSERT_EQ(side, 92);
    EXPECT_EQ(Pixel(dot.handle, 0, 0), 0x001830BFu);
    const uint32_t centre = Pixel(dot.handle, side / 2 - 1, side / 2 - 1);
    EXPECT_GE(centre >> 24, 254u);
    EXPECT_NEAR(static_cast<int>(centre & 0xFF), 0xFF, 6);
    EXPECT_NEAR(static_cast<int>(centre >> 16 & 0xFF), 0x20, 6);
  }
}

TEST(UnpluggedTv, FramesShrinkTheCurrentPictureOverTheNextAndTheLastRevealsTheFirst) {
  UnpluggedTvState state{};
  SetUnpluggedTvTiming(&state, 48, 10, &kSwell);
  state.width = 64;
  state.height = 40;
  state.count = 3;
  const uint32_t colours[3] = {0x0000FF, 0x00FF00, 0xFF0000};
  for (int32_t i = 0; i < 3; ++i) state.pictures[i] = Picture(64, 40, colours[i], 20, 0);
  state.background = Picture(64, 40, 0x808080, 0, 0);
  for (int32_t alpha : {1, 0}) {
    state.alpha = alpha;
    for (int32_t current = 0; current < 3; ++current) {
      SCOPED_TRACE(alpha * 10 + current);
      state.current = current;
      const uint32_t next = colours[(current + 1) % 3];
      // The first squeeze frame is the current picture whole.
      state.phase = 0;
      state.step = 0;
      ScopedBlock first(MakeUnpluggedTvFrame(&state));
      EXPECT_EQ(Pixel(first.handle, 32, 20) & 0xFFFFFF, colours[current]);
      // On the line, the picture's edges show the next one's; without alpha on the background.
      state.phase = 1;
      state.step = 15;
      ScopedBlock line(MakeUnpluggedTvFrame(&state));
      EXPECT_EQ(Pixel(line.handle, 22, 20) & 0xFFFFFF, next);
      EXPECT_EQ(Pixel(line.handle, 0, 0), alpha ? next : 0x808080u);
      EXPECT_EQ(Width(line.handle), 64);
    }
  }
  FreeUnpluggedTvState(&state);
  EXPECT_EQ(state.count, 0);
}

TEST(UnpluggedTvPage, BuildsAThirdOfFramesPerPhasePerFillWithPauseAndDotDelays) {
  WindowHandle dialog = CreateValueDialog();
  ASSERT_NE(dialog, nullptr);
  // The page's own creation colours, which a dialog made from its resources already holds.
  const uint32_t materials[][2] = {{923, 0x7F7F7F}, {925, 0x202020}, {943, 0xFF0000},
                                   {945, 0x00FF00}, {947, 0x00CCFF}, {949, 0x0033CC},
                                   {951, 0x0066FF}};
  for (const auto& m : materials)
    ASSERT_EQ(DialogCreateMaterial(DialogItem(dialog, static_cast<int32_t>(m[0])), m[1]), 1);
  SetDialogItemInt(dialog, 57, 14, 0);  // a small font keeps the canvas small
  SetDialogItemInt(dialog, 11, 8, 0);
  SetDialogItemInt(dialog, 23, 50, 0);
  EXPECT_EQ(UnpluggedTvEffectKeyColour(dialog, 0), 0x202020);

  struct Case {
    int32_t frames, enabled, sizeFactor;
  } cases[] = {{48, 0, 20}, {48, 1, 20}, {12, 3, 20}, {48, 0, 0}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.frames * 100 + c.enabled * 10 + c.sizeFactor);
    SetDialogItemInt(dialog, 941, static_cast<uint32_t>(c.frames), 0);
    for (int32_t i = 0; i < 3; ++i) DialogSetCheck(DialogItem(dialog, 953 + i), i < c.enabled);
    *SettingInteger("Style019SwellSizeFactor") = c.sizeFactor;
    const int32_t per = c.frames / 3 < 8 ? 8 : c.frames / 3, fills = 2 + c.enabled;
    std::vector<int32_t> delays;
    for (int32_t f = 0; f < fills; ++f)
      for (int32_t phase = 0; phase < 3; ++phase)
        for (int32_t s = 0; s < (phase == 2 && !c.sizeFactor ? 0 : per); ++s)
          delays.push_back(phase == 0 && s == 0 ? 50 : phase == 2 ? 12 : 8);
    crt::srand(1);
    const SizedRun a = RunSized(dialog, UnpluggedTvEffectBuild);
    ASSERT_EQ(a.ok, 1);
    EXPECT_EQ(a.delays, delays);
    crt::srand(99);  // no random numbers: another generator state changes nothing
    EXPECT_EQ(RunSized(dialog, UnpluggedTvEffectBuild).frames, a.frames);
    for (const std::vector<uint32_t>& f : a.frames) EXPECT_EQ(f.size(), a.frames[0].size());
  }
  *SettingInteger("Style019SwellSizeFactor") = 20;

  // The sample is the text in Color 1 on the Background material, not a frame of the switch-off.
  BuildContext preview{};
  preview.dialog = dialog;
  preview.sample = 1;
  ASSERT_EQ(UnpluggedTvEffectPreview(&preview), 1);
  ScopedBlock sample(preview.image);
  EXPECT_EQ(Pixel(sample.handle, 0, 0), 0x202020u);

  SetDialogItemInt(dialog, 941, 2, 0);
  SetDialogItemInt(dialog, 57, 8, 0);
  *SettingInteger("Style019SwellSizeFactor") = 0;
  EXPECT_TRUE(SweepAllocationFailures(
      [dialog] { return RunSized(dialog, UnpluggedTvEffectBuild).ok; }, 100000, true));
  *SettingInteger("Style019SwellSizeFactor") = 20;
  DialogDestroy(dialog);
}
