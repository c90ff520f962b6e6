// Compares Snow drawn by the Windows build (under Wine) with the same drawn natively. The frame
// set holds no glyphs: its flakes are lines of width 2 drawn by GDI there and by Cairo here, then
// halved, so the two differ only along the lines' edges, by a bound measured on this scene. The
// dialog's Build against the native build of the document saved from the same dialog agrees in
// frame count and delays; the canvas, and with it where the flakes fall, follows the font
// engines' measure of the text.
#include <cstdio>
#include <deque>
#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

#include "cli/command_line.h"
#include "cli/render_command.h"
#include "host/bmp_file.h"
#include "shell/packed_dib.h"
#include "tests/support/mask_scenes.h"
#include "tests/support/parity_files.h"
#include "tests/support/snow_scenes.h"

TEST(SnowParity, FrameSetsDifferOnlyAlongTheFlakesLines) {
  const char* dir = std::getenv("GM5_PARITY_DIR");
  ASSERT_NE(dir, nullptr) << "GM5_PARITY_DIR must name the Windows run's parity folder";
  StartDrawingForTests();
  std::vector<MovableHandle> frames;
  ASSERT_EQ(RenderSnowScene(&frames), 1);
  std::deque<ScopedBlock> here, there;  // built in place: blocks do not move
  for (size_t i = 0; i < frames.size(); ++i) {
    here.emplace_back(frames[i]);
    there.emplace_back(ReadParityFile(std::string(dir) + "/snow-" + std::to_string(i) + ".dib"));
  }
  // Measured on this scene: about 0.35 to 0.38 of the pixels differ (every flake's edges), by 8 a
  // channel on average; the same frames one step apart differ far more, so the flakes stand in
  // the same places on both platforms.
  constexpr double kShareBound = 0.45, kChannelBound = 12;
  for (size_t i = 0; i < frames.size(); ++i) {
    PictureDifference d, shifted;
    ASSERT_EQ(ComparePictures(here[i].handle, there[i].handle, &d), 1) << i;
    ASSERT_EQ(ComparePictures(here[i].handle, there[(i + 1) % frames.size()].handle, &shifted), 1);
    std::printf(
        "snow-%zu native %dx%d windows %dx%d differing %.4f mean channel %.1f; against "
        "the next frame %.4f, %.1f\n",
        i, d.width[0], d.height[0], d.width[1], d.height[1], d.share, d.meanChannel, shifted.share,
        shifted.meanChannel);
    EXPECT_EQ(d.width[0] * 65536 + d.height[0], d.width[1] * 65536 + d.height[1]);
    EXPECT_LE(d.share, kShareBound) << i;
    EXPECT_LE(d.meanChannel, kChannelBound) << i;
    EXPECT_GT(shifted.share * shifted.meanChannel, 5 * d.share * d.meanChannel) << i;
  }
}

TEST(SnowParity, ADialogBuildHasTheNativeBuildsFramesAndDelays) {
  const char* dir = std::getenv("GM5_PARITY_DIR");
  ASSERT_NE(dir, nullptr) << "GM5_PARITY_DIR must name the Windows run's parity folder";
  CommandLine line;
  line.command = CommandRender;
  line.defaults = 1;
  line.quiet = 1;
  line.arguments = {std::string(dir) + "/snow.gm5"};
  line.output = std::string(dir) + "/snow-native.gif";
  HostFile built;
  std::string error;
  ASSERT_EQ(RenderAnimation(line, &error, &built), 1) << error;
  std::remove(line.output.c_str());
  const std::vector<uint8_t> meta =
      ReadWholeFile((std::string(dir) + "/snow-build/file2.txt").c_str());
  const std::string windowsMeta(meta.begin(), meta.end());
  constexpr int kCharacters = 4;     // "Snow"
  constexpr int kSpaceAdvance = 12;  // DejaVu Sans Bold at size 40
  ASSERT_EQ(built.frames.size(), 6u);
  size_t at = 0;
  for (size_t i = 0; i < built.frames.size(); ++i) {
    char name[64];
    std::snprintf(name, sizeof name, "/snow-build/file2-frame%03zu.bmp", i);
    const std::vector<uint8_t> file = ReadWholeFile((std::string(dir) + name).c_str());
    ScopedBlock windows(BmpToPackedDib(file.data(), file.size()));
    ScopedBlock native(CopyToMovableBlock(built.frames[i].dib.data(), built.frames[i].dib.size()));
    PictureDifference d;
    ASSERT_EQ(ComparePictures(native.handle, windows.handle, &d), 1) << i;
    std::printf("snow-dialog-%zu native %dx%d windows %dx%d\n", i, d.width[0], d.height[0],
                d.width[1], d.height[1]);
    // The engines round the cell height apart by a pixel at most, and Wine measures each
    // character up to a space's advance narrower.
    EXPECT_LE(std::abs(d.height[0] - d.height[1]), 1) << i;
    EXPECT_LE(std::abs(d.width[0] - d.width[1]), kSpaceAdvance * kCharacters) << i;
    at = windowsMeta.find(" delay=", at + 1);
    ASSERT_NE(at, std::string::npos) << i;
    EXPECT_EQ(std::atoi(windowsMeta.c_str() + at + 7), built.frames[i].delay) << i;
  }
}
