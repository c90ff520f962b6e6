// Builds that fail end with their message. Messages are boxes on Windows, so these runs are
// native only.
#include <gtest/gtest.h>

#include "shell/messages.h"
#include "tests/support/alloc_sweep.h"
#include "tests/support/build_scenarios.h"

TEST(BuildRun, RefusalsAndMemoryFailuresEndWithTheirMessage) {
  struct Refusal {
    int32_t opcode;
    const char* calls;
    const char* message;
    size_t files;  // made by the host; a made file is closed without being kept
  } refusals[] = {
      {HostOpCreateFile, "RPCCPCCPPPPF", kCreateFileFailedText, 0},
      {HostOpAddImage, "RPCCPCCPPPPFBAX", kAddImageFailedText, 1},
  };
  for (const Refusal& r : refusals) {
    Scenario s;
    s.host.refused.insert(r.opcode);
    EXPECT_EQ(s.Go(), 0);
    EXPECT_EQ(s.calls, r.calls);
    EXPECT_STREQ(LastShownMessage(), r.message);
    ASSERT_EQ(s.host.files.size(), r.files);
    for (const auto& file : s.host.files) EXPECT_TRUE(file->closed && !file->committed);
  }

  Scenario empty;
  empty.frames.clear();
  EXPECT_EQ(empty.Go(), 0);
  EXPECT_STREQ(LastShownMessage(), "Memory error");

  // Every failure ends with "Memory error", except the key's copy of frame 0: without it the
  // remapped picture stands and the build goes on.
  for (int dither : {0, 1}) {
    Scenario sweep;
    sweep.options.superCompress = 1;
    sweep.options.dither = dither;
    long survivors = 0;
    EXPECT_TRUE(SweepAllocationFailures(
        [&] {
          const int ok = sweep.Go();
          if (!ok) {
            EXPECT_STREQ(LastShownMessage(), "Memory error");
          }
          return ok;
        },
        100000, &survivors));
    EXPECT_EQ(survivors, 1) << dither;
  }
}
