#include "effects/frame_renderer.h"

#include <gtest/gtest.h>

#include <map>

#include "shell/packed_dib.h"
#include "tests/support/alloc_sweep.h"
#include "tests/support/drawing_session.h"
#include "tests/support/test_images.h"

namespace {

constexpr uint32_t kFill = 0x0000C0, kShadow = 0x505050, kBack = 0xFFFFFF, kOutline = 0xC00000;

struct Scene {
  Material fill, shadow, background;
  FrameSettings settings{};
  Scene() {
    for (Material* m : {&fill, &shadow, &background}) InitMaterial(m);
    fill.solidColour = kFill;
    shadow.solidColour = kShadow;
    background.solidColour = kBack;
    settings.text = {"IH", kTestFace, 40, 1, 0, 0, 100, 2, 0, 1, 1, 6, 0};
    settings.fillOpacity = 255;
    settings.shadowOpacity = 255;
    settings.shadowDirection = 3;  // right
    settings.outlineColour = kOutline;
    settings.alphaGreyBack = 0x7F7F7F;
    settings.fill = &fill;
    settings.shadow = &shadow;
    settings.background = &background;
  }
};

struct Frame {
  int width = 0, height = 0, bits = 0;
  std::map<uint32_t, int> colours;  // pixel value -> count
  std::map<uint32_t, int> alphas;   // alpha byte -> count, 32-bit frames only
};

Frame Render(const FrameSettings& settings, int x = 0, int y = 0) {
  const PictureValues p = TakePicture(RenderStandardFrame(nullptr, &settings, x, y));
  Frame f{p.width, p.height, p.bits, {}, {}};
  for (uint32_t v : p.values) {
    ++f.colours[v & 0xFFFFFF];
    if (f.bits == 32) ++f.alphas[v >> 24];
  }
  return f;
}

}  // namespace

TEST(FrameRenderer, LayersStackInOrderOnTheBackground) {
  Scene s;
  Frame f = Render(s.settings);
  ASSERT_EQ(f.bits, 24);
  EXPECT_GT(f.colours[kBack], 0);
  EXPECT_GT(f.colours[kFill], 0);
  EXPECT_GT(f.colours[kShadow], 0) << "the shadow shows right of the text";
  EXPECT_GT(f.colours[kOutline], 0);

  // The shadow grows the canvas by its offset; without it the canvas is that much smaller.
  s.settings.text.shadowEnabled = 0;
  Frame flat = Render(s.settings);
  EXPECT_EQ(flat.width, f.width - 6);
  EXPECT_EQ(flat.height, f.height - 6);
  EXPECT_EQ(flat.colours.count(kShadow), 0u);

  // Opacity 0 and no outline leave the background alone, as does a text far off the canvas.
  FrameSettings hidden = s.settings;
  hidden.fillOpacity = 0;
  hidden.text.outlineEnabled = 0;
  for (const Frame& plain : {Render(hidden), Render(s.settings, 0, -5000)}) {
    EXPECT_EQ(plain.colours.size(), 1u);
    EXPECT_EQ(plain.colours.at(kBack), plain.width * plain.height);
  }
  // A page whose Background is a colour button has no material: the canvas is that colour.
  hidden.background = nullptr;
  hidden.backgroundColour = 0x123456;
  const Frame coloured = Render(hidden);
  EXPECT_EQ(coloured.colours.size(), 1u);
  EXPECT_EQ(coloured.colours.at(0x123456), coloured.width * coloured.height);

  // Softness widens the margin even with the shadow off.
  s.settings.text.softness = 40;
  Frame soft = Render(s.settings);
  EXPECT_EQ(soft.width, flat.width + 2 * 5);
  s.settings.text.text = "";
  EXPECT_EQ(RenderStandardFrame(nullptr, &s.settings, 0, 0), nullptr);
}

TEST(FrameRenderer, AlphaPlanesInBuildsOnly) {
  Scene s;
  s.settings.alphaTransparency = 1;
  s.settings.fillOpacity = 0;
  s.settings.text.outlineEnabled = 0;
  s.settings.text.shadowEnabled = 0;
  Frame clear = Render(s.settings);
  ASSERT_EQ(clear.bits, 32);
  EXPECT_EQ(clear.alphas[0], clear.width * clear.height) << "nothing covers the background";

  s.settings.fillOpacity = 255;
  s.settings.text.shadowEnabled = 1;
  Frame covered = Render(s.settings);
  EXPECT_GT(covered.alphas[255], 0);
  EXPECT_EQ(covered.colours.count(kShadow), 0u) << "an alpha shadow adds coverage, no colour";

  s.settings.alphaBackground = 1;
  EXPECT_GT(Render(s.settings).colours[0x7F7F7F], 0);
  s.settings.alphaBackground = 0;
  s.settings.sample = 1;  // the sample shows what a flat build would
  EXPECT_EQ(Render(s.settings).bits, 24);

  s.settings.sample = 0;
  s.settings.text.text = "I";
  s.settings.text.fontSize = 12;
  s.settings.text.softness = 4;
  s.settings.text.outlineEnabled = 1;
  EXPECT_TRUE(SweepAllocationFailures([&] {
    MovableHandle image = RenderStandardFrame(nullptr, &s.settings, 1, 2);
    MovableFree(image);
    return image != nullptr;
  }));
}
