// Omni in the real dialog through gm5host: a GIF written by the test chosen through the animation
// picker's Select button, Test and Build with one frame per GIF frame at the GIF's delays, a
// screenshot of the page in build/windows/screenshots; then a second run that finds the file again
// through the saved path.
#include <windows.h>

#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

#include "host/bmp_file.h"
#include "tests/support/tiny_gif.h"
#include "tests/win32/host_run_win32.h"

namespace {

// Three frames of 24 by 16: a bar of colour 1 moving right over colour 0, the last all colour 2.
std::vector<uint8_t> ThreeFrameGif() {
  const uint32_t palette[4] = {0x2060C0, 0xF0C020, 0x30A040, 0xFFFFFF};
  std::vector<std::vector<uint8_t>> frames(3, std::vector<uint8_t>(24 * 16, 0));
  for (int f = 0; f < 2; ++f)
    for (int y = 0; y < 16; ++y)
      for (int x = 8 * f; x < 8 * f + 8; ++x) frames[f][y * 24 + x] = 1;
  frames[2].assign(24 * 16, 2);
  return TinyGif(24, 16, palette, frames, {20, 35, 50});
}

void ExpectFramesAtTheGifsDelays(const HostRun& run) {
  for (const char* file : {"file=1", "file=2"}) {
    const std::string add = std::string("call op=2 name=HostOpAddImage ") + file;
    EXPECT_EQ(run.Count(add), 3) << file;
    EXPECT_EQ(run.Count(add + " index=0 delay=20 "), 1) << file;
    EXPECT_EQ(run.Count(add + " index=1 delay=35 "), 1) << file;
    EXPECT_EQ(run.Count(add + " index=2 delay=50 "), 1) << file;
  }
}

}  // namespace

TEST(EffectRuns, OmniTakesAGifThroughThePickerAndFindsItAgain) {
  if (!DisplayAvailable()) GTEST_SKIP() << "no display";
  const std::string bin = BuildPath(GM5_PLUGIN_PATH);
  const std::string folder =
      bin.substr(0, bin.find_last_of('\\', bin.find_last_of('\\') - 1)) + "\\screenshots";
  CreateDirectoryA(folder.c_str(), nullptr);
  const std::string gif = TempFolder() + "gm5_omni_source.gif";
  ASSERT_TRUE(WriteWholeFile(gif.c_str(), ThreeFrameGif()));
  ForgetConfiguration();

  // The user picks the GIF with Select: the host reads it, the page and the sample show it, Test
  // and Build make one frame per GIF frame.
  const HostRun chosen = RunHost(
      "--capabilities 1", "animation-file " + gif +
                              "\nwait-dialog\nselect 58 5\nset-text 52 Go\nsleep 300\n"
                              "count-paints 25\nclick-child 612 1\nsleep 700\n"
                              "read-paints 25\nscreenshot 0 " + folder +
                              "\\run-omni.png\nclick 24\nclick 1\n");
  ASSERT_EQ(chosen.exitCode, 0u);
  EXPECT_EQ(chosen.Line("dobuild"), "dobuild result=1");
  EXPECT_EQ(chosen.Count("box"), 0);
  EXPECT_NE(chosen.Line("screenshot").find("result=1"), std::string::npos);
  const std::string open = "call op=16 name=HostOpOpenAnimation";
  EXPECT_EQ(chosen.Value(open, "path"), "") << "the user was asked";
  EXPECT_EQ(chosen.Value(open, "frames"), "3");
  EXPECT_GE(std::atoi(chosen.Value("read-paints", "paints").c_str()), 1)
      << "the sample shows the new fill";
  ExpectFramesAtTheGifsDelays(chosen);
  const std::string configuration = ReadConfiguration();
  const size_t saved = configuration.find("Style011AnimPath");
  ASSERT_NE(saved, std::string::npos);
  EXPECT_EQ(configuration.substr(saved, configuration.find('\n', saved) - saved),
            "Style011AnimPath = " + gif);

  // The next use reads the same file from the saved path, with no one asked.
  const HostRun again =
      RunHost("--capabilities 1", "wait-dialog\nselect 58 5\nsleep 300\nclick 24\nclick 1\n");
  ASSERT_EQ(again.exitCode, 0u);
  EXPECT_EQ(again.Line("dobuild"), "dobuild result=1");
  EXPECT_NE(again.Value(open, "path"), "");
  EXPECT_EQ(again.Value(open, "frames"), "3");
  ExpectFramesAtTheGifsDelays(again);
  ForgetConfiguration();
  DeleteFileA(gif.c_str());
}
