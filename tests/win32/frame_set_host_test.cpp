// Machine, Quark, Neural Network and Wavelet picked in the real dialog through gm5host: Test and
// then Build from each page, with the frame counts the pages give and the one delay every frame of
// a set has, and a screenshot of the page for looking at in build/windows/screenshots.
#include <windows.h>

#include <string>

#include <gtest/gtest.h>

#include "tests/win32/host_run_win32.h"

TEST(EffectRuns, GeometricFrameSetsTestAndBuildFromTheirPages) {
  if (!DisplayAvailable()) GTEST_SKIP() << "no display";
  const std::string bin = BuildPath(GM5_PLUGIN_PATH);
  const std::string folder =
      bin.substr(0, bin.find_last_of('\\', bin.find_last_of('\\') - 1)) + "\\screenshots";
  CreateDirectoryA(folder.c_str(), nullptr);
  struct Case {
    const char* name;
    int row;
    std::string frames;  // the step that sets the page's frame count
    int count;
  } cases[] = {{"machine", 6, "select 306 0", 6},  // Rotation -60: one turn in 6 frames
               {"quark", 8, "select 338 33", 6},   // Rotation 60
               {"neural-network", 7, "set-text 373 4", 16},  // Matrix 4: one frame per cell
               {"wavelet", 19, "set-text 510 5", 5}};
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
      EXPECT_EQ(run.Count(add + " index=0 delay=6 "), 1) << file;
      EXPECT_EQ(run.Count(add + " index=" + std::to_string(c.count - 1) + " delay=6 "), 1)
          << file;
    }
  }
  ForgetConfiguration();
}
