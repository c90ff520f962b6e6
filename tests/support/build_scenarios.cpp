// The stand-in effect and the recording host of the build pipeline tests.
#include "tests/support/build_scenarios.h"

#include <gtest/gtest.h>

#include "shell/packed_dib.h"

std::vector<FakeFrame> fakeFrames;
int32_t fakeKey = kWhite;
std::vector<int32_t> opcodes;

namespace {

HostSession* session = nullptr;

int FakeBuild(BuildContext* context) {
  for (size_t i = 0; i < fakeFrames.size(); ++i) {
    const FakeFrame& f = fakeFrames[i];
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
  return mode ? -1 : fakeKey;
}

uint64_t RecordingService(void* object, int32_t opcode, uint64_t a, uint64_t b) {
  opcodes.push_back(opcode);
  return ServeHostCall(session, object, opcode, a, b);
}

}  // namespace

const EffectEntry kFakeEffect = {"Fake",        nullptr, nullptr, FakeBuild,
                                 FakeKeyColour, nullptr, nullptr};

Scenario::Scenario() {
  fakeFrames = {{6, 4, 10, kWhite, 0}, {6, 4, 20, kWhite, 0}, {6, 4, 30, kWhite, 0}};
  fakeKey = kWhite;
  record.service = RecordingService;
  record.capabilities = kHostIndexed;
  options.customPalette = 1;
  options.fixedPalette = 6;
  options.remap = kDefaultRemapSettings;
}

int Scenario::Go() {
  session = &host;
  opcodes.clear();
  const long live = MovableLiveCount();
  const int ok = RunBuild(nullptr, &record, isTest, &options, &kFakeEffect);
  EXPECT_EQ(MovableLiveCount(), live) << "every frame is freed";
  return ok;
}

uint32_t Scenario::Pixel(size_t i, int x, int y) {
  return ReadDibPixel(File().frames.at(i).dib.data(), x, y);
}
