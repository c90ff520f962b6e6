#include "tests/support/sized_runs.h"

#include "shell/packed_dib.h"

std::vector<uint32_t> SizedPixels(MovableHandle image) {
  std::vector<uint32_t> pixels;
  ScopedLock lock(image);
  if (!lock) return pixels;
  const BitmapInfoHeader* h = reinterpret_cast<const BitmapInfoHeader*>(lock.bytes);
  pixels.push_back(static_cast<uint32_t>(h->biWidth));
  pixels.push_back(static_cast<uint32_t>(h->biHeight));
  for (int32_t y = 0; y < h->biHeight; ++y)
    for (int32_t x = 0; x < h->biWidth; ++x) pixels.push_back(ReadDibPixel(lock.bytes, x, y));
  return pixels;
}

SizedRun RunSized(WindowHandle dialog, EffectBuild build) {
  FrameList list{};
  BuildContext context{};
  context.dialog = dialog;
  context.frames = &list;
  SizedRun run{};
  run.ok = build(&context);
  {
    ScopedLock lock(list.records);
    for (int32_t i = 0; lock && i < list.count; ++i) {
      const FrameRecord& r = reinterpret_cast<const FrameRecord*>(lock.bytes)[i];
      run.frames.push_back(SizedPixels(r.image));
      run.delays.push_back(r.delay);
    }
  }
  FreeFrameList(&list);
  return run;
}
