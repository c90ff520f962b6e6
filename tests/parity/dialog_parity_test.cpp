// Compares a Build made from the main dialog under Wine (its frames as the host received them, and
// the document saved from the same dialog) with gm5's native build of that document. Only the font
// engines differ, so the files agree in frame count, total delay, depth and palette, the heights
// within a pixel and the widths within a space's advance a character; pixels differ only where
// glyphs are drawn, and the last frame, whose text has scrolled out, agrees exactly.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "cli/command_line.h"
#include "cli/render_command.h"
#include "host/bmp_file.h"
#include "shell/packed_dib.h"
#include "tests/support/parity_files.h"

TEST(DialogParity, ADialogBuildMatchesTheNativeBuildOfItsDocument) {
  const char* dir = std::getenv("GM5_PARITY_DIR");
  ASSERT_NE(dir, nullptr) << "GM5_PARITY_DIR must name the Windows run's parity folder";
  CommandLine line;
  line.command = CommandRender;
  line.defaults = 1;
  line.quiet = 1;
  line.arguments = {std::string(dir) + "/dialog.gm5"};
  line.output = std::string(dir) + "/dialog-native.gif";
  HostFile built;
  std::string error;
  ASSERT_EQ(RenderAnimation(line, &error, &built), 1) << error;
  std::remove(line.output.c_str());

  constexpr int kCharacters = 6;    // "Parity"
  constexpr int kSpaceAdvance = 9;  // DejaVu Sans Bold at size 32
  ASSERT_EQ(built.frames.size(), 6u);
  const std::vector<uint8_t> meta =
      ReadWholeFile((std::string(dir) + "/dialog-build/file1.txt").c_str());
  const std::string windowsMeta(meta.begin(), meta.end());
  int32_t nativeDelays = 0;
  for (size_t i = 0; i < built.frames.size(); ++i) {
    char name[64];
    std::snprintf(name, sizeof name, "/dialog-build/file1-frame%03zu.bmp", i);
    const std::vector<uint8_t> file = ReadWholeFile((std::string(dir) + name).c_str());
    ScopedBlock windows(BmpToPackedDib(file.data(), file.size()));
    ScopedBlock native(CopyToMovableBlock(built.frames[i].dib.data(), built.frames[i].dib.size()));
    nativeDelays += built.frames[i].delay;
    PictureDifference d;
    ASSERT_EQ(ComparePictures(native.handle, windows.handle, &d), 1) << i;
    std::printf("dialog-%zu native %dx%d windows %dx%d differing %.4f\n", i, d.width[0],
                d.height[0], d.width[1], d.height[1], d.share);
    ScopedLock a(native.handle), b(windows.handle);
    ASSERT_EQ(reinterpret_cast<const BitmapInfoHeader*>(a.bytes)->biBitCount, 8);
    ASSERT_EQ(reinterpret_cast<const BitmapInfoHeader*>(b.bytes)->biBitCount, 8);
    EXPECT_EQ(std::memcmp(DibTable(a.bytes), DibTable(b.bytes), 256 * 4), 0) << "fixed palette";
    // The engines round the cell height apart by a pixel at most, and Wine measures each
    // character up to a space's advance narrower. Pixels differ only inside the text, as both
    // pictures share the background's index.
    EXPECT_LE(std::abs(d.height[0] - d.height[1]), 1) << i;
    EXPECT_LE(std::abs(d.width[0] - d.width[1]), kSpaceAdvance * kCharacters) << i;
    EXPECT_EQ(ReadDibPixel(a.bytes, 0, 0), ReadDibPixel(b.bytes, 0, 0)) << "background";
    if (i + 1 == built.frames.size()) {
      EXPECT_EQ(d.differing, 0) << "the last frame holds no glyph";
    }
  }
  // The pause falls on the frame where the text comes to rest, which the canvas width moves, so
  // the frames share their delays as a whole.
  int32_t windowsDelays = 0;
  for (size_t at = windowsMeta.find(" delay="); at != std::string::npos;
       at = windowsMeta.find(" delay=", at + 1))
    windowsDelays += std::atoi(windowsMeta.c_str() + at + 7);
  EXPECT_EQ(windowsDelays, nativeDelays);
}
