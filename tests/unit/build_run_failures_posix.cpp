// Builds that fail end with their message. Messages are boxes on Windows, so these runs are
// native only.
#include <gtest/gtest.h>

#include "shell/messages.h"
#include "tests/support/alloc_sweep.h"
#include "tests/support/build_scenarios.h"

TEST(BuildRun, RefusalsAndMemoryFailuresEndWithTheirMessage) {
  Scenario create;
  create.host.refused.insert(HostOpCreateFile);
  EXPECT_EQ(create.Go(), 0);
  EXPECT_STREQ(LastShownMessage(), kCreateFileFailedText);
  EXPECT_EQ(opcodes.back(), HostOpCreateFile);

  Scenario add;
  add.host.refused.insert(HostOpAddImage);
  EXPECT_EQ(add.Go(), 0);
  EXPECT_STREQ(LastShownMessage(), kAddImageFailedText);
  EXPECT_EQ(opcodes.back(), HostOpCloseFile);
  EXPECT_TRUE(add.File().closed);
  EXPECT_FALSE(add.File().committed);

  Scenario empty;
  fakeFrames.clear();
  EXPECT_EQ(empty.Go(), 0);
  EXPECT_STREQ(LastShownMessage(), "Memory error");

  for (int dither : {0, 1}) {
    Scenario sweep;
    sweep.options.superCompress = 1;
    sweep.options.dither = dither;
    EXPECT_TRUE(SweepAllocationFailures([&] {
      sweep.host.files.clear();
      sweep.host.openFiles.clear();
      const int ok = RunBuild(nullptr, &sweep.record, 0, &sweep.options, &kFakeEffect);
      if (!ok) {
        EXPECT_STREQ(LastShownMessage(), "Memory error");
      }
      return ok;
    }));
  }
}
