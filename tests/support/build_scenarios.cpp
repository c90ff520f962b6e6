// The stand-in effect and the recording host of the build pipeline tests.
#include "tests/support/build_scenarios.h"

#include <gtest/gtest.h>

#include "shell/packed_dib.h"

namespace {

Scenario* running = nullptr;

int FakeBuild(BuildContext* context) {
  for (size_t i = 0; i < running->frames.size(); ++i) {
    const FakeFrame& f = running->frames[i];
    FrameRecord record{};
    record.image = CreatePackedDib(f.width, f.height, nullptr, 24);
    record.delay = f.delay;
    record.transparentIndex = -1;
    {
      ScopedLock p(record.image);
      if (!p) return 0;
      for (int y = 0; y < f.height; ++y)
        for (int x = 0; x < f.width; ++x)
          WriteDibPixel(p.bytes, x, y, f.spread ? (x * 7919 + y * 104729) & 0xFFFFFF : f.base);
      WriteDibPixel(p.bytes, 1, 1, 0x0000FF - static_cast<uint32_t>(i) * 0x40);
    }
    if (!AppendFrame(context->frames, &record)) {
      MovableFree(record.image);
      return 0;
    }
  }
  return 1;
}

int32_t FakeKeyColour(WindowHandle, int32_t mode) {
  return mode ? -1 : running->key;
}

// The letter of each opcode from 0 to 15, as the header of build_scenarios.h lists them.
constexpr char kLetters[] = "?FAMXT????C?RP?B";

uint64_t RecordingService(void* object, int32_t opcode, uint64_t a, uint64_t b) {
  running->calls += opcode >= 0 && opcode < 16 ? kLetters[opcode] : '?';
  return ServeHostCall(&running->host, object, opcode, a, b);
}

const EffectEntry kFakeEffect = {"Fake",        nullptr, nullptr, FakeBuild,
                                 FakeKeyColour, nullptr, nullptr};

}  // namespace

Scenario::Scenario() {
  frames = {{6, 4, 10, kWhite, 0}, {6, 4, 20, kWhite, 0}, {6, 4, 30, kWhite, 0}};
  record.service = RecordingService;
  record.capabilities = kHostIndexed;
  options.customPalette = 1;
  options.fixedPalette = 6;
  options.remap = kDefaultRemapSettings;
}

int Scenario::Go() {
  running = this;
  calls.clear();
  host.files.clear();
  host.openFiles.clear();
  const long live = MovableLiveCount();
  const int ok = RunBuild(nullptr, &record, isTest, &options, &kFakeEffect);
  EXPECT_EQ(MovableLiveCount(), live) << "every frame is freed";
  return ok;
}

uint32_t Scenario::Pixel(size_t i, int x, int y) {
  return ReadDibPixel(File().frames.at(i).dib.data(), x, y);
}
