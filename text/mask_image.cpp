#include "text/mask_image.h"

#include "shell/packed_dib.h"

namespace {

struct RampBytes {
  uint8_t bytes[kPaletteBytes];
};

constexpr RampBytes MakeGreyRamp() {
  RampBytes ramp = {};
  for (uint32_t i = 0; i < kPaletteBytes; ++i) ramp.bytes[i] = static_cast<uint8_t>(i / 3);
  return ramp;
}

constexpr RampBytes kGreyRamp = MakeGreyRamp();

}  // namespace

const uint8_t* GreyRamp() {
  return kGreyRamp.bytes;
}

MovableHandle CreateMask(int32_t width, int32_t height) {
  return CreatePackedDib(width, height, GreyRamp(), 8);
}
