#include "effects/quark.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>

#include "controls/value_controls.h"
#include "documents/settings.h"
#include "effects/quark_outline.h"
#include "materials/fountain_button.h"
#include "shell/crt_random.h"
#include "tests/support/alloc_sweep.h"
#include "tests/support/effect_builds.h"
#include "tests/support/value_dialog.h"

// Rows of the Rotation list: -60 is row 0, -1 row 16, 6 row 22, 12 row 26.

namespace {

Pixels Frame(const QuarkState& state, int32_t f) {
  ScopedBlock image(RenderQuarkFrame(&state, f));
  return PicturePixels(image.handle);
}

}  // namespace

TEST(Quark, TheRainbowAndTheTurnAboutTheCentre) {
  FountainGradient rainbow;
  std::memset(&rainbow, 0xAB, sizeof(rainbow));
  BuiltInRainbow(&rainbow);
  const FountainMarker markers[7] = {0x20FF0000, 0x40FFFF00, 0x6000FF00, 0x8000FFFF,
                                     0xA00000FF, 0xC0FF00FF, 0xE0CC0099};
  EXPECT_EQ(std::memcmp(rainbow.magic, "COBLFOUN", 8), 0);
  EXPECT_EQ(rainbow.version, 0x04000001u);
  EXPECT_EQ(rainbow.size, 585u);
  EXPECT_EQ(rainbow.flags, 0u);
  EXPECT_EQ(rainbow.markerCount, 7u);
  EXPECT_EQ(rainbow.leftColour, 0u);
  EXPECT_EQ(rainbow.rightColour & 0xFFFFFF, 0xFFFFFFu);
  EXPECT_EQ(std::memcmp(rainbow.markers, markers, sizeof(markers)), 0);

  // The frame is the gradient of the turned description, the angle never reduced to one turn.
  QuarkState state{};
  state.width = 40;
  state.height = 30;
  state.centreX = -6;
  state.centreY = 0;
  state.initialRotation = 359;
  state.rotation = 60;
  GradientSpec spec{};
  spec.type = kGradientConical;
  spec.centreX = -6;
  spec.midpoint = 50;
  for (int32_t f : {0, 5}) {
    spec.rotation = 359 + 60 * f;
    ScopedBlock reference(MakeGradientImage(40, 30, &spec, &rainbow));
    EXPECT_EQ(Frame(state, f), PicturePixels(reference.handle)) << f;
  }
  EXPECT_NE(Frame(state, 1), Frame(state, 0));
  state.rotation = 6;
  state.initialRotation = 0;
  EXPECT_EQ(Frame(state, 60), Frame(state, 0)) << "one turn";
}

TEST(QuarkPage, BuildsOneTurnAndTheSampleIsItsFirstFrame) {
  WindowHandle dialog = SmallEffectDialog({320, 322}, {0x7F7F7F, 0xFFFFFF});
  ASSERT_NE(dialog, nullptr);
  EXPECT_EQ(QuarkEffectKeyColour(dialog, 0), 0xFFFFFF);
  const int32_t delay = ReadDlgValue(dialog, 11);
  crt::srand(5);
  const BuiltFrames standard = BuildEffectFrames(QuarkEffectBuild, dialog);
  ASSERT_EQ(standard.ok, 1);
  ASSERT_EQ(standard.frames.size(), 60u);
  EXPECT_EQ(standard.delays, std::vector<int32_t>(60, delay));
  EXPECT_EQ(PreviewEffectPixels(QuarkEffectPreview, dialog), standard.frames[0]);
  crt::srand(6);
  EXPECT_EQ(BuildEffectFrames(QuarkEffectBuild, dialog).frames, standard.frames);

  SelectComboRow(dialog, 338, 26);
  const BuiltFrames twelve = BuildEffectFrames(QuarkEffectBuild, dialog);
  ASSERT_EQ(twelve.frames.size(), 30u);
  for (size_t k : {1u, 14u, 29u}) EXPECT_EQ(twelve.frames[k], standard.frames[2 * k]) << k;
  SelectComboRow(dialog, 338, 16);
  EXPECT_EQ(BuildEffectFrames(QuarkEffectBuild, dialog).frames.size(), 360u);
  SelectComboRow(dialog, 338, 22);
  // The offsets move the cone's centre; the initial rotation is frame 0's angle.
  SetDialogItemInt(dialog, 340, 1, 0);
  EXPECT_NE(PreviewEffectPixels(QuarkEffectPreview, dialog), standard.frames[0]);
  SetDialogItemInt(dialog, 340, 47, 0);
  SetDialogItemInt(dialog, 344, 12, 0);
  EXPECT_EQ(PreviewEffectPixels(QuarkEffectPreview, dialog), standard.frames[2]);
  DialogSetCheck(DialogItem(dialog, 22), 0);
  const BuiltFrames still = BuildEffectFrames(QuarkEffectBuild, dialog);
  ASSERT_EQ(still.frames.size(), 1u);
  EXPECT_EQ(still.frames[0], standard.frames[2]);

  EXPECT_TRUE(SweepAllocationFailures([dialog] {
    FrameParams params{};
    params.frameCount = 2;
    const int ok = BuildFrameSet(&params, &kQuarkFrameSet, dialog, 30, 20);
    FreeFrameSet(&params);
    return ok;
  }));
  DialogDestroy(dialog);
}

// The colours come from the page's Fountain button: the gradient it starts with looks as the
// built-in rainbow does, a gradient from a document line changes Quark and Quark Outline alike,
// and a control of another kind is never read as a gradient.
TEST(QuarkPage, TheFountainButtonGivesTheColours) {
  // The button's own file (kept where the settings are) must not carry one run into the next.
  SetSettingsFolder(MakeTempFolder("gm5-quark-fountain").c_str());
  WindowHandle dialog = SmallEffectDialog({320, 322, 659, 661, 663},
                                          {0x7F7F7F, 0xFFFFFF, 0x40C040, 0x7F7F7F, 0xFFFFFF});
  ASSERT_NE(dialog, nullptr);
  WindowHandle button = DialogItem(dialog, kQuarkFountainId);
  ASSERT_NE(button, nullptr);
  const Pixels rainbow = PreviewEffectPixels(QuarkEffectPreview, dialog);
  const Pixels rainbowRing = PreviewEffectPixels(QuarkOutlineEffectPreview, dialog);
  ASSERT_EQ(DialogCreateMaterial(button, 0), 1);
  EXPECT_EQ(PreviewEffectPixels(QuarkEffectPreview, dialog), rainbow);
  EXPECT_EQ(PreviewEffectPixels(QuarkOutlineEffectPreview, dialog), rainbowRing);

  FountainGradient grey;
  std::memset(&grey, 0, sizeof grey);
  InitFountainGradient(&grey, 1);
  grey.leftColour = 0x0000FF;
  ASSERT_EQ(DialogReadLine(button, FountainDocumentLine(kQuarkFountainId, &grey).c_str()), 1);
  EXPECT_NE(PreviewEffectPixels(QuarkEffectPreview, dialog), rainbow);
  EXPECT_NE(PreviewEffectPixels(QuarkOutlineEffectPreview, dialog), rainbowRing);
  // The frame set takes the gradient as the button holds it.
  QuarkState state{};
  static constexpr QuarkFountainIds kIds = {338, 340, 342, 344, kQuarkFountainId};
  ASSERT_EQ(ReadQuarkState(&state, dialog, &kIds, 60, 40), 1);
  ASSERT_EQ(state.hasFountain, 1);
  EXPECT_EQ(std::memcmp(&state.fountain, &grey, kFountainSize), 0);

  FountainGradient untouched;
  std::memset(&untouched, 0x5A, sizeof untouched);
  EXPECT_EQ(ButtonFountain(DialogItem(dialog, 340), &untouched), 0);
  EXPECT_EQ(untouched.markerCount, 0x5A5A5A5Au);
  DialogDestroy(dialog);
  SetSettingsFolder("");
}
