// Whole runs of the build pipeline against the in-process host, with a stand-in effect whose
// frames and key colour each case sets, and the host's calls recorded one letter per opcode:
// R registered, P progress, C caption, F create file, T create test file, B background,
// A add image, M comment, X close file.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/host_session.h"
#include "shell/build_pipeline.h"

constexpr uint32_t kWhite = 0xFFFFFF;

struct FakeFrame {
  int32_t width, height, delay;
  uint32_t base;   // every pixel but (1, 1), which differs from frame to frame
  int32_t spread;  // nonzero: every pixel a different colour instead
};

// One run: three 6 x 4 white frames, key white, an indexed host, custom palette, fixed palette 6.
struct Scenario {
  HostSession host;
  HostRecord record{};
  BuildOptions options{};
  int32_t isTest = 0;
  std::vector<FakeFrame> frames;
  int32_t key = kWhite;
  std::string calls;  // of the last run

  Scenario();
  // Runs the build and checks that no block is left behind. Returns what RunBuild returned.
  int Go();
  const HostFile& File() { return *host.files.at(0); }
  // The value of pixel (x, y) of frame `i` as the host keeps it.
  uint32_t Pixel(size_t i, int x, int y);
};
