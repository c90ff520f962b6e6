// The build pipeline's passes. Each pass copies a frame's record out of the list and unlocks the
// list before touching pixels, so that the list's block may move; only one list lock is held at a
// time. Pixels are compared and written through the accessors, whatever the depth.
#include "shell/build_pipeline.h"

#include <cstring>

#include "shell/packed_dib.h"

namespace {

constexpr char kCaptionSupercompressing[] = "Supercompressing";

void Progress(const BuildRun* run, int32_t step, int32_t total) {
  CallRunHost(run, nullptr, HostOpProgress, static_cast<uint64_t>(step),
              static_cast<uint64_t>(total));
}

void Caption(const BuildRun* run, const char* text) {
  CallRunHost(run, nullptr, HostOpProgressCaption, 0, reinterpret_cast<uint64_t>(text));
}

// The one-bit mask of a frame against `previous`, which takes the frame's changed pixels.
MovableHandle CompareWithPrevious(MovableHandle previous, MovableHandle image) {
  static const uint8_t kBlackWhite[6] = {0, 0, 0, 255, 255, 255};
  ScopedLock before(previous), after(image);
  if (!before || !after) return nullptr;
  const BitmapInfoHeader* h = reinterpret_cast<const BitmapInfoHeader*>(before.bytes);
  const int32_t width = h->biWidth, height = h->biHeight;
  ScopedBlock mask(CreatePackedDib(width, height, kBlackWhite, 1));
  ScopedLock bits(mask.handle);
  if (!bits) return nullptr;
  for (int32_t y = 0; y < height; ++y)
    for (int32_t x = 0; x < width; ++x) {
      const uint32_t a = ReadDibPixel(before.bytes, x, y);
      const uint32_t b = ReadDibPixel(after.bytes, x, y);
      if (a != b) WriteDibPixel(before.bytes, x, y, b);
      WriteDibPixel(bits.bytes, x, y, a == b ? 1 : 0);
    }
  return mask.Release();
}

}  // namespace

uint64_t CallRunHost(const BuildRun* run, void* object, int32_t opcode, uint64_t a, uint64_t b) {
  if (!run->host || !run->host->service) return 0;
  return run->host->service(object, opcode, a, b);
}

int32_t PaletteBits(int32_t n) {
  for (int32_t bits = 1; bits <= 8; ++bits)
    if (n <= (1 << bits)) return bits;
  return 24;
}

int ReadFrameRecord(const FrameList* list, int32_t index, FrameRecord* record) {
  if (index < 0 || index >= list->count) return 0;
  ScopedLock lock(list->records);
  if (!lock) return 0;
  std::memcpy(record, lock.bytes + static_cast<size_t>(index) * sizeof(FrameRecord),
              sizeof(FrameRecord));
  return 1;
}

int WriteFrameRecord(FrameList* list, int32_t index, const FrameRecord* record) {
  if (index < 0 || index >= list->count) return 0;
  ScopedLock lock(list->records);
  if (!lock) return 0;
  std::memcpy(lock.bytes + static_cast<size_t>(index) * sizeof(FrameRecord), record,
              sizeof(FrameRecord));
  return 1;
}

int SupercompressFrames(BuildRun* run) {
  Progress(run, 0, 0);
  Caption(run, kCaptionSupercompressing);
  const int32_t count = run->frames.count;
  for (int32_t i = 0; i < count; ++i) {
    Progress(run, i, count);
    FrameRecord record;
    if (!ReadFrameRecord(&run->frames, i, &record)) return 0;
    if (i == 0) {
      MovableFree(run->previous);
      run->previous = CopyMovableBlock(record.image);
      if (!run->previous) return 0;
    } else {
      record.mask = CompareWithPrevious(run->previous, record.image);
      if (!record.mask) return 0;
    }
    if (!WriteFrameRecord(&run->frames, i, &record)) {
      MovableFree(i == 0 ? nullptr : record.mask);
      return 0;
    }
  }
  return 1;
}

int MarkUnchangedPixels(MovableHandle image, MovableHandle mask, int32_t index, uint32_t colour) {
  ScopedLock picture(image), marks(mask);
  if (!picture || !marks) return 0;
  BitmapInfoHeader* h = reinterpret_cast<BitmapInfoHeader*>(picture.bytes);
  const BitmapInfoHeader* m = reinterpret_cast<const BitmapInfoHeader*>(marks.bytes);
  for (int32_t y = 0; y < m->biHeight; ++y)
    for (int32_t x = 0; x < m->biWidth; ++x)
      if (ReadDibPixel(marks.bytes, x, y) == 1)
        WriteDibPixel(picture.bytes, x, y, static_cast<uint32_t>(index));
  // Slot -1 lies in the header; anything else outside the table is not written.
  const int32_t entries = static_cast<int32_t>(DibTableBytes(h->biBitCount) / 4);
  if (index >= -1 && index < entries) {
    uint8_t* entry = DibTable(picture.bytes) + static_cast<ptrdiff_t>(index) * 4;
    entry[0] = static_cast<uint8_t>(colour >> 16);
    entry[1] = static_cast<uint8_t>(colour >> 8);
    entry[2] = static_cast<uint8_t>(colour);
  }
  return 1;
}
