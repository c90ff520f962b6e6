// Whole runs of the build pipeline against the in-process host, with a stand-in effect whose
// frames and key colour each case sets, and a record of every opcode the host was called with.
#pragma once

#include <cstdint>
#include <vector>

#include "host/host_session.h"
#include "shell/build_pipeline.h"

constexpr uint32_t kWhite = 0xFFFFFF;

struct FakeFrame {
  int32_t width, height, delay;
  uint32_t base;   // every pixel but (1, 1), which differs from frame to frame
  int32_t spread;  // nonzero: every pixel a different colour instead
};

// What the stand-in effect builds and answers; each Scenario resets them.
extern std::vector<FakeFrame> fakeFrames;
extern int32_t fakeKey;
// The opcodes of the last run, in order.
extern std::vector<int32_t> opcodes;
extern const EffectEntry kFakeEffect;

// One run: three 6 x 4 white frames, key white, an indexed host, custom palette, fixed palette 6.
struct Scenario {
  HostSession host;
  HostRecord record{};
  BuildOptions options{};
  int32_t isTest = 0;

  Scenario();
  // Runs the build and checks that no block is left behind. Returns what RunBuild returned.
  int Go();
  const HostFile& File() { return *host.files.at(0); }
  // The value of pixel (x, y) of frame `i` as the host keeps it.
  uint32_t Pixel(size_t i, int x, int y);
};
