// Ring, Diagonal Fuse and Unplugged TV picked in the real dialog through gm5host: Test and then
// Build from each page, with the frame counts and delays the pages give, and a screenshot of the
// page for looking at in build/windows/screenshots.
#include <windows.h>

#include <string>

#include <gtest/gtest.h>

#include "tests/win32/host_run_win32.h"

TEST(EffectRuns, RingDiagonalFuseAndUnpluggedTvTestAndBuildFromTheirPages) {
  if (!DisplayAvailable()) GTEST_SKIP() << "no display";
  const std::string bin = BuildPath(GM5_PLUGIN_PATH);
  const std::string folder =
      bin.substr(0, bin.find_last_of('\\', bin.find_last_of('\\') - 1)) + "\\screenshots";
  CreateDirectoryA(folder.c_str(), nullptr);
  struct Case {
    const char* name;
    int row;
    std::string frames;  // the step that sets the page's Frames or Rotation
    int count;           // frames in each file
    const char* firstDelay;
    const char* lastDelay;
  } cases[] = {
      {"ring", 11, "select 154 33", 6, "delay=6 ", "delay=6 "},            // 60 degrees a frame
      {"diagonal-fuse", 3, "set-text 634 4", 3, "delay=6 ", "delay=36 "},  // 2 growing, 1 fused
      // Five fills of three phases of 8 frames; the pause first, a dot frame last (6 * 150 %).
      {"unplugged-tv", 17, "set-text 941 2", 120, "delay=30 ", "delay=9 "}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    ForgetConfiguration();
    const std::string script = "wait-dialog\nselect 58 " + std::to_string(c.row) +
                               "\nset-text 52 Go\nset-text 11 6\nset-text 23 30\n" + c.frames +
                               "\nsleep 700\nscreenshot 0 " + folder + "\\run-" + c.name +
                               ".png\nclick 24\nclick 1\n";
    const HostRun run = RunHost("--capabilities 1", script);
    ASSERT_EQ(run.exitCode, 0u);
    EXPECT_EQ(run.Line("dobuild"), "dobuild result=1");
    EXPECT_EQ(run.Count("box"), 0);
    EXPECT_NE(run.Line("screenshot").find("result=1"), std::string::npos);
    for (const char* file : {"file=1", "file=2"}) {
      const std::string add = std::string("call op=2 name=HostOpAddImage ") + file;
      EXPECT_EQ(run.Count(add), c.count) << file;
      EXPECT_EQ(run.Count(add + " index=0 " + c.firstDelay), 1) << file;
      EXPECT_EQ(run.Count(add + " index=" + std::to_string(c.count - 1) + " " + c.lastDelay), 1)
          << file;
    }
  }
  ForgetConfiguration();
}
