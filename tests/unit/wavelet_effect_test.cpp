#include "effects/wavelet.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "controls/value_controls.h"
#include "shell/crt_random.h"
#include "shell/packed_dib.h"
#include "tests/support/alloc_sweep.h"
#include "tests/support/effect_builds.h"

namespace {

constexpr WaveletSettings kDefaults = {
    0xFFFFFF, {0xFF0000, 0x00FF00, 0x00CCFF, 0x0033CC, 0x0066FF}, 5, 2, 1, 12055, 75, 32, 70,
    160, 10};

struct Wavelet {
  WaveletState state{};
  int ok;
  Wavelet(const WaveletSettings& s, int32_t w, int32_t h)
      : ok(PrepareWaveletState(&state, &s, w, h)) {}
  ~Wavelet() { ReleaseWaveletState(&state); }
};

}  // namespace

TEST(Wavelet, WavesLevelsAndTheColourDraws) {
  const int32_t waves[][2] = {{-1, 1}, {0, 1}, {1, 2}, {2, 4}, {3, 8}, {4, 8}, {40, 8}};
  for (const auto& w : waves) EXPECT_EQ(WaveletWaves(w[0]), w[1]) << w[0];

  // One wave over four columns: column 1 is the crest (90 degrees), column 3 the trough.
  struct Case {
    int32_t amplitude, crest, trough;
  } levels[] = {{75, 287, 95}, {100, 255, 0}, {50, 319, 191}};
  for (const Case& c : levels) {
    WaveletSettings s = kDefaults;
    s.amplitude = c.amplitude;
    s.wavelength = 0;
    s.scroll = 0;  // forwards; the page's Scroll 1 runs the wave the other way
    s.size = 10;
    Wavelet w(s, 40, 10);
    ASSERT_EQ(w.ok, 1);
    ASSERT_EQ(w.state.columns, 4);
    EXPECT_EQ(WaveletLevel(&w.state, 1, 0), c.crest) << c.amplitude;
    EXPECT_EQ(WaveletLevel(&w.state, 3, 0), c.trough) << c.amplitude;
    // A quarter of the loop later the crest has moved on by one column, the other way reversed.
    EXPECT_EQ(WaveletLevel(&w.state, 0, 8), c.crest);
    w.state.reverse = 1;
    EXPECT_EQ(WaveletLevel(&w.state, 0, 23), c.crest);
  }

  // The grid rounds up; the only draws are the colour picks, cell by cell, rows outside.
  crt::srand(12055);
  std::vector<int> r(400);
  for (int& v : r) v = crt::rand();
  Wavelet w(kDefaults, 45, 21);
  ASSERT_EQ(w.ok, 1);
  const int next = crt::rand();
  EXPECT_EQ(w.state.columns * 10 + w.state.rows, 53);
  EXPECT_EQ(w.state.waves, 4);
  size_t k = 0;
  for (int32_t i = 0, last = -1; i < w.state.cellCount; ++i) {
    int index = -1;
    for (int tries = 0; tries < 16 && (tries == 0 || index == last); ++tries) index = r[k++] % 5;
    last = index;
    const WaveletCell& cell = w.state.cells[i];
    EXPECT_EQ(cell.color, kDefaults.colors[index]) << i;
    EXPECT_EQ(cell.x * 100 + cell.y, (i % 5) * 1000 + (i / 5) * 10) << i;
    ScopedLock ball(cell.image);
    EXPECT_EQ(reinterpret_cast<const BitmapInfoHeader*>(ball.bytes)->biBitCount, 32);
  }
  EXPECT_EQ(next, r[k]);

  // Size beyond the canvas: one cell, clipped by the wrap.
  WaveletSettings big = kDefaults;
  big.size = 36;
  Wavelet one(big, 20, 12);
  ASSERT_EQ(one.ok, 1);
  EXPECT_EQ(one.state.cellCount, 1);
  ScopedBlock frame(RenderWaveletFrame(&one.state, 0));
  EXPECT_EQ(PicturePixels(frame.handle).size(), 240u);
}

TEST(WaveletPage, BuildsTheFramesAndScrollReversesThem) {
  WindowHandle dialog = SmallEffectDialog({500, 502}, {0x7F7F7F, 0xFFFFFF});
  ASSERT_NE(dialog, nullptr);
  EXPECT_EQ(WaveletEffectKeyColour(dialog, 0), 0xFFFFFF);
  const int32_t delay = ReadDlgValue(dialog, 11);
  const BuiltFrames standard = BuildEffectFrames(WaveletEffectBuild, dialog);
  ASSERT_EQ(standard.ok, 1);
  ASSERT_EQ(standard.frames.size(), 32u);
  EXPECT_EQ(standard.delays, std::vector<int32_t>(32, delay));
  EXPECT_EQ(PreviewEffectPixels(WaveletEffectPreview, dialog), standard.frames[0]);
  EXPECT_EQ(BuildEffectFrames(WaveletEffectBuild, dialog).frames, standard.frames);

  SetDialogItemInt(dialog, 510, 6, 0);
  const BuiltFrames six = BuildEffectFrames(WaveletEffectBuild, dialog);
  ASSERT_EQ(six.frames.size(), 6u);
  EXPECT_NE(six.frames[1], six.frames[0]);
  SetDialogItemInt(dialog, 548, 0, 0);
  const BuiltFrames back = BuildEffectFrames(WaveletEffectBuild, dialog);
  ASSERT_EQ(back.frames.size(), 6u);
  for (size_t f = 0; f < 6; ++f) EXPECT_EQ(back.frames[f], six.frames[5 - f]) << f;
  SetDialogItemInt(dialog, 528, 12056, 0);
  EXPECT_NE(BuildEffectFrames(WaveletEffectBuild, dialog).frames, back.frames);

  SetDialogItemInt(dialog, 510, 2, 0);
  EXPECT_TRUE(SweepAllocationFailures([dialog] {
    FrameParams params{};
    params.frameCount = 2;
    const int ok = BuildFrameSet(&params, &kWaveletFrameSet, dialog, 24, 16);
    FreeFrameSet(&params);
    return ok;
  }));
  DialogDestroy(dialog);
}
