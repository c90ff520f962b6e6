#include "effects/confetti.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "controls/value_controls.h"
#include "effects/item_shadow.h"
#include "shell/crt_random.h"
#include "shell/packed_dib.h"
#include "tests/support/frame_set_checks.h"

namespace {

constexpr ConfettiSettings kDefaults = {{0xFF0000, 0x00FF00, 0x00CCFF, 0x0033CC, 0x0066FF},
                                        {0, 1, 1, 1, 1},
                                        0x4C4C4C,
                                        255,
                                        4,
                                        20,
                                        10645,
                                        255,
                                        4,
                                        128,
                                        20,
                                        64};

using Confetti = PreparedFrameSet<ConfettiState, ConfettiSettings, PrepareConfettiState,
                                  ReleaseConfettiState, RenderConfettiFrame>;

}  // namespace

TEST(Confetti, PreparationDrawsPositionPhaseAndColourAndEveryDiscHasSideSize) {
  struct Case {
    int32_t size, shadowOpacity;
  } cases[] = {{20, 255}, {2, 0}, {9, 17}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.size);
    ConfettiSettings s = kDefaults;
    s.size = c.size;
    s.shadowOpacity = c.shadowOpacity;
    s.density = 6;
    const std::vector<int> r = RandomSequence(static_cast<uint32_t>(s.seed), 100);
    Confetti confetti(s, 90, 50);
    ASSERT_EQ(confetti.ok, 1);
    const int next = crt::rand();
    size_t k = 0;
    int32_t last = -1;
    for (int32_t i = 0; i < 6; ++i) {
      const ConfettiItem& item = confetti.state.items[i];
      EXPECT_EQ(item.x, r[k] % 90);
      EXPECT_EQ(item.y, r[k + 1] % 50);
      EXPECT_EQ(item.phase, static_cast<float>(r[k + 2] % 360));
      k += 3;
      int32_t index = 0;
      for (int tries = 0; tries < 16; ++tries)
        if ((index = r[k++] % 5) != last) break;
      last = index;
      EXPECT_EQ(item.color, kDefaults.colors[index]);
      EXPECT_EQ(PictureWidth(item.image), c.size);
      EXPECT_EQ(PictureWidth(item.shadow), c.shadowOpacity ? c.size + ItemShadowPad(4, 20) : -1);
    }
    EXPECT_EQ(next, r[k]) << "no other call was made";
  }
}

TEST(Confetti, ShadowStrengthIsTheSmallerOpacityOverTheShadowDiscsLevel) {
  // One disc of side 20 with a sharp shadow 4 down and right: the point 14, 22 of the stamp is
  // inside the shadow disc and outside the disc. Its coverage is the shadow disc's level (the
  // Shadow opacity), scaled below 255 by the smaller of Fill and Shadow opacity.
  struct Case {
    int32_t fill, shadow, a;
  } cases[] = {{255, 255, 255}, {100, 255, 100}, {255, 100, 39}, {100, 200, 78}};
  for (const Case& c : cases) {
    ConfettiSettings s = kDefaults;
    s.density = 1;
    s.drift = 0;
    s.softness = 0;
    s.fillOpacity = c.fill;
    s.shadowOpacity = c.shadow;
    s.shadowColor = 0x2060A0;
    Confetti confetti(s, 60, 60);
    ASSERT_EQ(confetti.ok, 1);
    confetti.state.items[0].x = 20;
    confetti.state.items[0].y = 79;  // the stamp's corner at 10, 10
    const std::vector<uint32_t> frame = confetti.Frame(0);
    uint32_t expected = 0;
    for (int shift = 0; shift < 24; shift += 8)
      expected |= (((0x2060A0u >> shift) & 0xFF) * static_cast<uint32_t>(c.a) / 255 +
                   255 * static_cast<uint32_t>(255 - c.a) / 255)
                  << shift;
    EXPECT_EQ(frame[static_cast<size_t>(32 * 60 + 24)], expected) << c.fill << "/" << c.shadow;
  }
}

TEST(Confetti, DiscsFallAndSwayAsSnowDoes) {
  // One disc of speed 1, 4 frames on 40 by 40: each frame it falls 10 pixels, shadow and all; at
  // phase 90 the negated drift 10, subtracted from the place, puts it 4 pixels right of where
  // drift 0 does.
  ConfettiSettings s = kDefaults;
  s.density = 1;
  s.size = 12;
  s.frames = 4;
  s.drift = 0;
  Confetti a(s, 40, 40);
  ASSERT_EQ(a.ok, 1);
  const std::vector<uint32_t> first = a.Frame(0);
  EXPECT_EQ(a.Frame(1), RolledPixels(first, 40, 0, 10));
  EXPECT_EQ(a.Frame(4), first) << "the loop closes";
  s.drift = 10;
  Confetti b(s, 40, 40);
  a.state.items[0].phase = b.state.items[0].phase = 90;
  EXPECT_EQ(b.Frame(0), RolledPixels(a.Frame(0), 40, 4, 0));
}

TEST(ConfettiPage, BuildsThePagesLoopAndPaintsTheTextShadowInTheShadowColour) {
  WindowHandle dialog = CreateFramePageDialog();
  ASSERT_NE(dialog, nullptr);
  EXPECT_EQ(ConfettiEffectKeyColour(dialog, 0), 0xFFFFFF);
  SetDialogItemInt(dialog, 796, 24, 0);
  CheckFramePage(
      dialog, {ConfettiEffectBuild, ConfettiEffectPreview, &kConfettiFrameSet, 64, 798, 796, 794});
  // A sharp text shadow in a colour nothing but the shadows has, and a single disc.
  SetDialogItemInt(dialog, 772, 0x0000FE, 0);
  SetDialogItemInt(dialog, 796, 1, 0);
  SetDialogItemInt(dialog, 782, 0, 0);
  int32_t counts[2];
  for (int on = 0; on < 2; ++on) {
    DialogSetCheck(DialogItem(dialog, 788), on);
    const std::vector<uint32_t> sample = PreviewEffectPixels(ConfettiEffectPreview, dialog);
    counts[on] = static_cast<int32_t>(std::count(sample.begin(), sample.end(), 0x0000FEu));
  }
  EXPECT_GT(counts[1], counts[0] + 50) << "the text shadow is painted in the Shadow colour";
  DialogDestroy(dialog);
}
