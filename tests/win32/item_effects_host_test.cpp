// Arrows, Stars, Confetti and Candy picked in the real dialog through gm5host: Test and then Build
// from each page with a short loop, every frame at the Delay, and a screenshot of each page for
// looking at in build/windows/screenshots.
#include <windows.h>

#include <string>

#include <gtest/gtest.h>

#include "tests/win32/host_run_win32.h"

TEST(EffectRuns, ItemEffectsTestAndBuildFromTheirPages) {
  if (!DisplayAvailable()) GTEST_SKIP() << "no display";
  const std::string bin = BuildPath(GM5_PLUGIN_PATH);
  const std::string folder =
      bin.substr(0, bin.find_last_of('\\', bin.find_last_of('\\') - 1)) + "\\screenshots";
  CreateDirectoryA(folder.c_str(), nullptr);
  struct Case {
    const char* name;
    int row;
    int framesId;
  } cases[] = {{"arrows", 0, 426}, {"candy", 1, 834}, {"confetti", 2, 780}, {"stars", 14, 232}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    ForgetConfiguration();
    // The pause is read and not used: every frame of a loop has the Delay.
    const std::string script = "wait-dialog\nselect 58 " + std::to_string(c.row) +
                               "\nset-text 52 Go\nset-text 11 6\nset-text 23 30\nset-text " +
                               std::to_string(c.framesId) + " 3\nsleep 700\nscreenshot 0 " +
                               folder + "\\run-" + c.name + ".png\nclick 24\nclick 1\n";
    const HostRun run = RunHost("--capabilities 1", script);
    ASSERT_EQ(run.exitCode, 0u);
    EXPECT_EQ(run.Line("dobuild"), "dobuild result=1");
    EXPECT_EQ(run.Count("box"), 0);
    EXPECT_NE(run.Line("screenshot").find("result=1"), std::string::npos);
    for (const char* file : {"file=1", "file=2"}) {
      const std::string add = std::string("call op=2 name=HostOpAddImage ") + file;
      EXPECT_EQ(run.Count(add), 3) << file;
      for (int i = 0; i < 3; ++i)
        EXPECT_EQ(run.Count(add + " index=" + std::to_string(i) + " delay=6 "), 1) << file << i;
    }
  }
  ForgetConfiguration();
}
