#include "effects/ring.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <vector>

#include "controls/page_setup.h"
#include "controls/value_controls.h"
#include "shell/packed_dib.h"
#include "tests/support/alloc_sweep.h"
#include "tests/support/sized_runs.h"
#include "tests/support/value_dialog.h"

namespace {

struct Picture {
  int32_t width = 0, height = 0;
  std::vector<uint32_t> pixels;
  uint32_t At(int32_t x, int32_t y) const { return pixels[static_cast<size_t>(y * width + x)]; }
};

// The pixels of a picture made for the test, which is then freed.
Picture Take(MovableHandle image) {
  ScopedBlock owner(image);
  Picture p;
  ScopedLock lock(image);
  if (!lock) return p;
  const BitmapInfoHeader* h = reinterpret_cast<const BitmapInfoHeader*>(lock.bytes);
  p.width = h->biWidth;
  p.height = h->biHeight;
  for (int32_t y = 0; y < p.height; ++y)
    for (int32_t x = 0; x < p.width; ++x) p.pixels.push_back(ReadDibPixel(lock.bytes, x, y));
  return p;
}

// The dialog with the page's materials, a short text in a small font and a small ring.
WindowHandle RingDialog() {
  WindowHandle dialog = CreateValueDialog();
  AddTestFonts(dialog);  // a named face, which both platforms find or replace alike
  DialogCreateMaterial(DialogItem(dialog, 134), 0xBD7E40);
  DialogCreateMaterial(DialogItem(dialog, 136), 0x7F7F7F);
  DialogCreateMaterial(DialogItem(dialog, 138), 0xFFFFFF);
  DialogSetText(DialogItem(dialog, 52), "Ring");
  SetDialogItemInt(dialog, 57, 16, 0);
  SetDialogItemInt(dialog, 156, 40, 0);
  return dialog;
}

// Rows of the Rotation list.
constexpr int kRowMinus4 = 13, kRowMinus2 = 15, kRow60 = 33;

}  // namespace

TEST(Ring, CharactersTurnAboutTheCentreWithTheirAngle) {
  WindowHandle dialog = RingDialog();
  DialogSetText(DialogItem(dialog, 52), "T");
  DialogSetCheck(DialogItem(dialog, 51), 1);
  for (int32_t antialias : {1, 0}) {
    DialogSetCheck(DialogItem(dialog, 51), antialias);
    RingParams p;
    ASSERT_EQ(PrepareRing(dialog, &p), 1);
    EXPECT_EQ(p.stepAngle, -2) << "the saved row 15";
    EXPECT_EQ(p.ringWidth, 2 * (p.textHeight + 40));
    const Picture up = Take(RenderRingMask(&p, 200));
    ASSERT_EQ(up.width, p.ringWidth);
    // Upright on top, standing on the baseline `radius` above the centre, at level 200 inside.
    const int32_t c = p.ringWidth / 2;
    int32_t lowest = -1, full = 0, lit = 0;
    for (int32_t y = 0; y < up.height; ++y)
      for (int32_t x = 0; x < up.width; ++x)
        if (up.At(x, y)) {
          lowest = y;
          ++lit;
          full += up.At(x, y) == 200;
          EXPECT_LE(up.At(x, y), 200u);
        }
    EXPECT_NEAR(lowest, c - 40 - 1, 1) << "the glyph ends on the baseline";
    EXPECT_GT(full, 10);
#ifndef _WIN32
    // GDI's default quality follows the system's font smoothing, so only FreeType promises this.
    if (!antialias) {
      EXPECT_EQ(full, lit) << "hard edges: one level only";
    }
#endif
    // Turned a quarter, a half and three quarters (and whole turns, escapements down to -2700):
    // the same glyph, rotated about the centre, pixel for pixel. Both rasterisers (FreeType
    // here, GDI under Wine) turn by quarters exactly, so the bound is 0.
    for (int32_t quarter : {1, 2, 3, 4, 7}) {
      p.currentAngle = 90 * quarter;
      const Picture turned = Take(RenderRingMask(&p, 200));
      int32_t differ = 0;
      for (int32_t y = 0; y < up.height; ++y)
        for (int32_t x = 0; x < up.width; ++x) {
          int32_t tx = x, ty = y;
          for (int32_t q = 0; q < quarter % 4; ++q) {
            const int32_t nx = 2 * c - ty - 1;
            ty = tx;
            tx = nx;
          }
          differ += up.At(x, y) != turned.At(tx, ty);
        }
      EXPECT_EQ(differ, 0) << quarter << " quarters, " << lit << " lit";
    }
    ReleaseRing(&p);
  }
  // The walk: in "TT" the second T stands where a lone T stands at the start angle its
  // predecessor's advance reaches, trunc(advance / (radius * 2 pi) * 360) degrees on.
  DialogSetText(DialogItem(dialog, 52), "TT");
  RingParams two;
  ASSERT_EQ(PrepareRing(dialog, &two), 1);
  const Picture pair = Take(RenderRingMask(&two, 255));
  uint32_t advance = 0;  // 8 natively for this font; under Wine the measure gives 4
  {
    ScopedLock a(two.advances);
    advance = reinterpret_cast<const uint32_t*>(a.bytes)[0];
  }
  ReleaseRing(&two);
  DialogSetText(DialogItem(dialog, 52), "T");
  RingParams one;
  ASSERT_EQ(PrepareRing(dialog, &one), 1);
  const Picture first = Take(RenderRingMask(&one, 255));
  one.startAngle = static_cast<int32_t>(static_cast<float>(advance) /
                                        static_cast<float>(40 * 6.283185307179586) * 360.0);
  EXPECT_GT(one.startAngle, 0);
  const Picture second = Take(RenderRingMask(&one, 255));
  ReleaseRing(&one);
  // Where the two glyphs overlap, the second blends over the first; elsewhere the masks agree.
  int32_t differ = 0;
  for (size_t i = 0; i < pair.pixels.size(); ++i)
    if (!first.pixels[i] || !second.pixels[i])
      differ += pair.pixels[i] != std::max(first.pixels[i], second.pixels[i]);
  EXPECT_EQ(differ, 0);
  DialogDestroy(dialog);
  const int32_t counts[][2] = {{-60, 6}, {60, 6}, {-2, 180}, {1, 360}, {-1, 360}, {45, 8}};
  for (const auto& c : counts) EXPECT_EQ(RingFrameCount(c[0]), c[1]) << c[0];
}

TEST(RingPage, BuildsOneTurnWhoseFramesFollowTheAngleAndTheSampleIsTheFirst) {
  WindowHandle dialog = RingDialog();
  SetDialogItemInt(dialog, 11, 7, 0);
  EXPECT_EQ(RingEffectKeyColour(dialog, 0), 0xFFFFFF);
  DialogSetSelection(DialogItem(dialog, 154), kRowMinus4);
  const SizedRun four = RunSized(dialog, RingEffectBuild);
  ASSERT_EQ(four.ok, 1);
  EXPECT_EQ(four.delays, std::vector<int32_t>(90, 7));
  DialogSetSelection(DialogItem(dialog, 154), kRowMinus2);
  const SizedRun two = RunSized(dialog, RingEffectBuild);
  ASSERT_EQ(two.frames.size(), 180u);
  for (size_t k = 0; k < 90; k += 7) EXPECT_EQ(four.frames[k], two.frames[2 * k]) << k;
  EXPECT_NE(two.frames[0], two.frames[1]);

  RingParams p;
  ASSERT_EQ(PrepareRing(dialog, &p), 1);
  // Padding: the margin plus 1 + soft / 10 for a soft shadow; the shadow offset added once.
  const int32_t pad = ReadDlgValue(dialog, 59) + 1 + ReadDlgValue(dialog, 146) / 10;
  const int32_t side = p.ringWidth + 2 * pad + ReadDlgValue(dialog, 148);
  ReleaseRing(&p);
  EXPECT_EQ(two.frames[0][0], static_cast<uint32_t>(side));
  EXPECT_EQ(two.frames[0][1], static_cast<uint32_t>(side));

  BuildContext preview{};
  preview.dialog = dialog;
  preview.sample = 1;
  ASSERT_EQ(RingEffectPreview(&preview), 1);
  EXPECT_EQ(SizedPixels(preview.image), two.frames[0]) << "the sample is the first frame";
  MovableFree(preview.image);

  // Variations: animation off gives one frame at the start angle; no shadow drops the offset; a
  // larger radius widens the ring by twice the difference.
  DialogSetCheck(DialogItem(dialog, 22), 0);
  const SizedRun still = RunSized(dialog, RingEffectBuild);
  ASSERT_EQ(still.frames.size(), 1u);
  EXPECT_EQ(still.frames[0], two.frames[0]);
  DialogSetCheck(DialogItem(dialog, 152), 0);
  SetDialogItemInt(dialog, 156, 50, 0);
  EXPECT_EQ(RunSized(dialog, RingEffectBuild).frames[0][0],
            static_cast<uint32_t>(side - ReadDlgValue(dialog, 148) + 20));

  DialogSetCheck(DialogItem(dialog, 22), 1);
  DialogSetCheck(DialogItem(dialog, 152), 1);
  DialogSetSelection(DialogItem(dialog, 154), kRow60);
  SetDialogItemInt(dialog, 156, 32, 0);
  SetDialogItemInt(dialog, 57, 8, 0);
  EXPECT_TRUE(SweepAllocationFailures([dialog] { return RunSized(dialog, RingEffectBuild).ok; }));
  DialogDestroy(dialog);
}
