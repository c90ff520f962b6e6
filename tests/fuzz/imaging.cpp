// Feeds the colour operations small pictures and palettes made from arbitrary bytes, including
// headers that lie about their size or depth: nothing may crash, read outside a block or leak.
#include <cstdint>
#include <cstring>

#include "imaging/dither.h"
#include "imaging/octree_quantiser.h"
#include "imaging/resampler.h"
#include "shell/packed_dib.h"

namespace {

struct Reader {
  const uint8_t* data;
  size_t size;
  uint8_t Byte() {
    if (!size) return 0;
    --size;
    return *data++;
  }
  int32_t Int(int32_t lo, int32_t hi) { return lo + Byte() % (hi - lo + 1); }
};

// A picture from the bytes: a sane header most of the time, a mangled one otherwise; the table and
// pixels come from the rest of the input.
MovableHandle MakeImage(Reader* in) {
  const int32_t depths[] = {1, 4, 8, 24, 32, 24};
  const int32_t width = in->Int(1, 24), height = in->Int(1, 12);
  MovableHandle image = CreatePackedDib(width, height, nullptr, depths[in->Int(0, 5)]);
  ScopedLock lock(image);
  if (!lock) return image;
  const size_t size = MovableSize(image);
  for (size_t i = 40; i < size && in->size; ++i) lock.bytes[i] = in->Byte();
  auto* header = reinterpret_cast<BitmapInfoHeader*>(lock.bytes);
  switch (in->Int(0, 15)) {
    case 0:
      header->biWidth = in->Int(-2, 200);
      break;
    case 1:
      header->biHeight = in->Int(-2, 200);
      break;
    case 2:
      header->biBitCount = static_cast<uint16_t>(in->Int(0, 40));
      break;
    default:
      break;
  }
  return image;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Reader in{data, size};
  const RemapSettings settings = {in.Int(0, 1), in.Int(-300, 300), in.Int(-300, 300)};
  const int32_t bits = in.Int(0, 9);
  const int32_t count = in.Int(-1, 260);
  uint8_t palette[768];
  for (uint8_t& b : palette) b = in.Byte() & (in.Byte() | 0x0F);  // repeats are common
  MovableHandle a = MakeImage(&in);
  MovableHandle b = MakeImage(&in);

  MovableFree(DitherToPalette(a, palette, bits, count, settings));
  MovableHandle remapped = RemapToPalette(a, palette, bits, count, settings);
  MovableFree(ReplaceKeyColour(remapped, b, in.Int(0, 255) * 0x10101u, in.Int(-1, 300)));
  MovableFree(remapped);

  FrameList frames{};
  const int32_t frameCount = in.Int(0, 2);
  for (int32_t i = 0; i < frameCount; ++i) {
    FrameRecord record{};
    record.image = i ? b : a;
    AppendFrame(&frames, &record);
  }
  int32_t request = in.Int(-2, 300);
  uint8_t quantised[768];
  QuantiseFrames(&request, quantised, &frames);
  MovableFree(frames.records);  // the pictures are freed below

  MovableFree(ResampleImage(a, in.Int(0, 40), in.Int(0, 40), 0, 0.25 + in.Int(0, 8) * 0.25));
  MovableFree(a);
  MovableFree(b);
  return 0;
}
