// The animation picker's behaviour: the block walk, the frame service, the built-in clip, loading
// through the host and the document line.
#include "controls/animation_picker.h"

#include <sys/stat.h>

#include <cstdio>
#include <cstring>

#include "controls/item_text.h"
#include "shell/host_interface.h"
#include "shell/messages.h"
#include "shell/packed_dib.h"

const char kAnimationOpenFailure[] = "The animation you have selected could not be opened.";

namespace {

constexpr uint32_t kBlockVersion = 4096;
constexpr size_t kClipHeadSize = 872, kClipEntrySize = 2416, kClipEndSize = 76;
// Where an entry keeps its frame's delay, for entries whose header reaches that far.
constexpr size_t kEntryDelayOffset = 20;

uint32_t U32(const uint8_t* bytes, size_t at) {
  uint32_t v;
  std::memcpy(&v, bytes + at, 4);
  return v;
}
void PutU32(uint8_t* bytes, size_t at, uint32_t v) {
  std::memcpy(bytes + at, &v, 4);
}
int Fits(size_t size, size_t at, size_t length) {
  return at <= size && size - at >= length;
}

// The bytes a Packed DIB of this header needs, or 0 when the header is not one the frame service
// reads (bottom-up, 1, 4, 8, 24 or 32 bits, uncompressed).
uint64_t DibBytesNeeded(const BitmapInfoHeader& h) {
  const uint32_t bits = h.biBitCount;
  if (h.biSize != kDibHeaderBytes || h.biWidth <= 0 || h.biHeight <= 0 || h.biCompression != 0)
    return 0;
  if (bits != 1 && bits != 4 && bits != 8 && bits != 24 && bits != 32) return 0;
  return kDibHeaderBytes + DibTableBytes(bits) +
         static_cast<uint64_t>(DibStride(h.biWidth, static_cast<int32_t>(bits))) *
             static_cast<uint64_t>(h.biHeight);
}

// The 24-bit copy of a Packed DIB that lies in `size` bytes at `dib`; null when it does not fit.
MovableHandle WidenFrame(const uint8_t* dib, size_t size) {
  if (size < kDibHeaderBytes) return nullptr;
  BitmapInfoHeader h;
  std::memcpy(&h, dib, sizeof h);
  const uint64_t needed = DibBytesNeeded(h);
  if (needed == 0 || needed > size) return nullptr;
  MovableHandle wide = CreatePackedDib(h.biWidth, h.biHeight, nullptr, 24);
  ScopedLock out(wide);
  if (!out) return MovableFree(wide);
  const uint8_t* table = dib + kDibHeaderBytes;
  for (int32_t y = 0; y < h.biHeight; ++y)
    for (int32_t x = 0; x < h.biWidth; ++x) {
      uint32_t pixel = ReadDibPixel(dib, x, y);
      if (h.biBitCount <= 8) {
        const uint8_t* entry = table + 4 * (pixel & 0xFF);  // blue, green, red, 0
        pixel = entry[2] | entry[1] << 8 | entry[0] << 16;
      }
      WriteDibPixel(out.bytes, x, y, pixel & 0xFFFFFF);
    }
  return wide;
}

AnimationPickerState* LockState(WindowHandle picker, MovableHandle* handle) {
  *handle = picker ? static_cast<MovableHandle>(DialogGetUserData(picker)) : nullptr;
  return *handle ? static_cast<AnimationPickerState*>(MovableLock(*handle)) : nullptr;
}

struct StateLock {
  MovableHandle handle = nullptr;
  AnimationPickerState* state;
  explicit StateLock(WindowHandle picker) : state(LockState(picker, &handle)) {}
  ~StateLock() {
    if (state) MovableUnlock(handle);
  }
  StateLock(const StateLock&) = delete;
  StateLock& operator=(const StateLock&) = delete;
};

int FileExists(const char* path) {
  struct stat info;
  return stat(path, &info) == 0 && S_ISREG(info.st_mode);
}

// The clip's background, system colour 20 (the 3-D highlight), at its classic value: the headless
// port has no system colours.
constexpr uint32_t kClipBackground = 0xFFFFFF;

// Sends a request to the host; the block it gives, validated, or null. A refused block shows the
// picker's message.
MovableHandle RequestBlock(WindowHandle picker, AnimationRequest* request) {
  request->magic = kAnimationRequestMagic;
  request->size = sizeof *request;
  request->version = kBlockVersion;
  request->mode = 1;
  request->owner = picker;
  MovableHandle block = reinterpret_cast<MovableHandle>(
      CallHost(nullptr, HostOpOpenAnimation, 0, reinterpret_cast<uint64_t>(request)));
  if (block && !ValidateAnimationBlock(block)) {
    MovableFree(block);
    ShowMessage(picker ? DialogParent(picker) : nullptr, kAnimationOpenFailure);
    return nullptr;
  }
  return block;
}

// The built-in clip's frames: a ball in sixteen by sixteen cells, bouncing and changing colour.
// '#' is the ball, '+' its shine, '.' clear.
constexpr const char* kBall[10] = {
    "...####...", ".########.", "##++######", "#++#######", "#+########",
    "##########", "##########", "##########", ".########.", "...####...",
};
constexpr int32_t kClipFrames = 12;
constexpr int32_t kBallTop[kClipFrames] = {0, 1, 2, 3, 4, 5, 6, 5, 4, 3, 2, 1};
constexpr uint32_t kBallColour[kClipFrames] = {
    0x2020E0, 0x2070F0, 0x20C0F0, 0x20E0C0, 0x20D040, 0x80C020,
    0xE0A020, 0xE05020, 0xC02060, 0x9020C0, 0x6020D0, 0x3020E0,
};

}  // namespace

int ValidateAnimationBlock(MovableHandle block) {
  ScopedLock lock(block);
  return lock && CheckAnimationBlock(lock.bytes, MovableSize(block));
}

MovableHandle AnimationFrame(MovableHandle block, int32_t frame, int32_t* delayOut) {
  ScopedLock lock(block);
  const size_t size = MovableSize(block);
  if (!lock || !Fits(size, 0, 20) || U32(lock.bytes, 0) != kAnimationBlockMagic) return nullptr;
  const uint32_t count = U32(lock.bytes, 16);
  if (frame == kAnimationFrameCount) {
    if (delayOut) *delayOut = static_cast<int32_t>(count > 0x7FFFFFFF ? 0x7FFFFFFF : count);
    return nullptr;
  }
  if (count == 0 || frame < 0) return nullptr;
  const uint32_t wanted = static_cast<uint32_t>(frame) >= count ? count - 1
                                                                 : static_cast<uint32_t>(frame);
  // An end mark before the wanted entry gives the last entry met: a head may count more frames
  // than the block holds.
  size_t at = U32(lock.bytes, 4), found = 0;
  int haveFound = 0;
  for (uint32_t i = 0;; ++i) {
    if (!Fits(size, at, 4)) return nullptr;
    if (U32(lock.bytes, at) == kAnimationEndMagic) {
      if (!haveFound) return nullptr;
      break;
    }
    if (U32(lock.bytes, at) != kAnimationEntryMagic || !Fits(size, at, 20)) return nullptr;
    const size_t header = U32(lock.bytes, at + 4), data = U32(lock.bytes, at + 16);
    if (!Fits(size, at, header) || !Fits(size, at + header, data)) return nullptr;
    found = at;
    haveFound = 1;
    if (i == wanted) break;
    at += header + data;
  }
  const size_t header = U32(lock.bytes, found + 4), data = U32(lock.bytes, found + 16);
  MovableHandle wide = WidenFrame(lock.bytes + found + header, data);
  if (wide && delayOut)
    *delayOut = header >= kEntryDelayOffset + 4
                    ? static_cast<int32_t>(U32(lock.bytes, found + kEntryDelayOffset))
                    : 0;
  return wide;
}

int32_t AnimationFrameCount(MovableHandle block) {
  int32_t count = 0;
  AnimationFrame(block, kAnimationFrameCount, &count);
  return count;
}

MovableHandle MakeClipStrip() {
  constexpr int32_t side = 16;
  MovableHandle strip = CreatePackedDib32(side, side * kClipFrames);
  ScopedLock out(strip);
  if (!out) return MovableFree(strip);
  for (int32_t f = 0; f < kClipFrames; ++f) {
    const uint32_t c = kBallColour[f];
    // The shine: the colour halfway to white.
    const uint32_t shine = ((c & 0xFEFEFE) >> 1) + 0x7F7F7F;
    for (int32_t y = 0; y < 10; ++y)
      for (int32_t x = 0; x < 10; ++x) {
        const char mark = kBall[y][x];
        if (mark == '.') continue;
        WriteDibPixel(out.bytes, 3 + x, f * side + kBallTop[f] + y,
                      0xFF000000u | (mark == '+' ? shine : c));
      }
  }
  return strip;
}

MovableHandle MakeClipBlock(MovableHandle strip, uint32_t background, int fast) {
  ScopedLock in(strip);
  if (!in) return nullptr;
  BitmapInfoHeader h;
  std::memcpy(&h, in.bytes, sizeof h);
  if ((h.biBitCount != 24 && h.biBitCount != 32) || h.biWidth <= 0 || h.biHeight <= 0)
    return nullptr;
  const int32_t side = h.biWidth, count = h.biHeight / h.biWidth;
  const size_t dibSize = kDibHeaderBytes + static_cast<size_t>(DibStride(side, 24)) * side;
  const size_t total = kClipHeadSize + count * (kClipEntrySize + dibSize) + kClipEndSize;
  ScopedBlock block(MovableAlloc(total));
  ScopedLock out(block.handle);
  if (!out) return nullptr;
  std::memset(out.bytes, 0, total);
  uint8_t* b = out.bytes;
  PutU32(b, 0, kAnimationBlockMagic);
  PutU32(b, 4, kClipHeadSize);
  PutU32(b, 8, kBlockVersion);
  PutU32(b, 16, static_cast<uint32_t>(count));
  PutU32(b, 20, static_cast<uint32_t>(side));
  size_t at = kClipHeadSize;
  for (int32_t f = 0; f < count; ++f) {
    PutU32(b, at, kAnimationEntryMagic);
    PutU32(b, at + 4, kClipEntrySize);
    PutU32(b, at + 8, kBlockVersion);
    PutU32(b, at + 16, static_cast<uint32_t>(dibSize));
    PutU32(b, at + kEntryDelayOffset, fast ? kClipFastDelay : kClipSlowDelay);
    uint8_t* dib = b + at + kClipEntrySize;
    BitmapInfoHeader d{};
    d.biSize = kDibHeaderBytes;
    d.biWidth = side;
    d.biHeight = side;
    d.biPlanes = 1;
    d.biBitCount = 24;
    d.biSizeImage = static_cast<uint32_t>(dibSize - kDibHeaderBytes);
    std::memcpy(dib, &d, sizeof d);
    for (int32_t y = 0; y < side; ++y)
      for (int32_t x = 0; x < side; ++x) {
        const uint32_t s = ReadDibPixel(in.bytes, x, f * side + y);
        const uint32_t a = h.biBitCount == 32 ? s >> 24 : 255;
        uint32_t pixel = 0;
        for (int shift = 0; shift < 24; shift += 8)
          pixel |= (((s >> shift) & 0xFF) * a / 255 + ((background >> shift) & 0xFF) * (255 - a) / 255)
                   << shift;
        WriteDibPixel(dib, x, y, pixel);
      }
    at += kClipEntrySize + dibSize;
  }
  PutU32(b, at, kAnimationEndMagic);
  PutU32(b, at + 4, kClipEndSize);
  PutU32(b, at + 8, kBlockVersion);
  return block.Release();
}

MovableHandle MakeBuiltInClip(uint32_t background) {
  ScopedBlock strip(MakeClipStrip());
  const int fast = CurrentHost && (CurrentHost->capabilities & kHostTrueColourOffered);
  return strip.handle ? MakeClipBlock(strip.handle, background, fast) : nullptr;
}

int AnimationPickerCreate(WindowHandle picker) {
  if (!picker) return 0;
  if (DialogGetUserData(picker)) return 1;
  MovableHandle state = MovableAlloc(sizeof(AnimationPickerState));
  if (!state) return 0;
  DialogSetUserData(picker, state);
  return 1;
}

int AnimationPickerBind(WindowHandle picker, char* path) {
  if (!AnimationPickerCreate(picker)) return 0;
  {
    StateLock lock(picker);
    if (!lock.state) return 0;
    lock.state->path = path;
  }
  return AnimationPickerLoad(picker);
}

int AnimationPickerLoad(WindowHandle picker) {
  StateLock lock(picker);
  AnimationPickerState* s = lock.state;
  if (!s) return 0;
  MovableHandle block = nullptr;
  if (s->path && s->path[0] && FileExists(s->path)) {
    AnimationRequest request{};
    std::snprintf(request.path, kAnimationPathLimit + 1, "%s", s->path);
    block = RequestBlock(picker, &request);
  }
  MovableFree(s->animation);
  s->animation = block;
  if (!s->animation) {
    s->animation = MakeBuiltInClip(kClipBackground);
    if (s->path) s->path[0] = 0;
  }
  return s->animation != nullptr;
}

int AnimationPickerChoose(WindowHandle picker) {
  MovableHandle block = nullptr;
  {
    StateLock lock(picker);
    AnimationPickerState* s = lock.state;
    if (!s) return 0;
    if (s->path) s->path[0] = 0;
    AnimationRequest request{};
    block = RequestBlock(picker, &request);
    if (block) {
      MovableFree(s->animation);
      s->animation = block;
      if (s->path) {
        const size_t length = strnlen(request.path, kAnimationPathLimit);
        std::memcpy(s->path, request.path, length);
        s->path[length] = 0;
      }
    }
  }
  DialogNotify(DialogParent(picker), DialogItemId(picker), 0);
  return block != nullptr;
}

MovableHandle AnimationPickerFrame(WindowHandle picker, int32_t frame, int32_t* delayOut) {
  StateLock lock(picker);
  if (!lock.state || !lock.state->animation) {
    if (frame == kAnimationFrameCount && delayOut) *delayOut = 0;
    return nullptr;
  }
  return AnimationFrame(lock.state->animation, frame, delayOut);
}

MovableHandle AnimationPickerBlock(WindowHandle picker) {
  StateLock lock(picker);
  return lock.state ? lock.state->animation : nullptr;
}

const char* AnimationPickerPath(WindowHandle picker) {
  StateLock lock(picker);
  return lock.state ? lock.state->path : nullptr;
}

size_t AnimationPickerFormatLine(WindowHandle picker, char* line, size_t size) {
  if (!line || size == 0) return 0;
  line[0] = 0;
  const char* path = AnimationPickerPath(picker);
  const int n = std::snprintf(line, size, "ANMCTL%d=%s", DialogItemId(picker), path ? path : "");
  if (n < 0 || static_cast<size_t>(n) >= size) {
    line[0] = 0;
    return 0;
  }
  return static_cast<size_t>(n);
}

int AnimationPickerTakeLine(WindowHandle picker, const char* line) {
  if (!line || !TagMatches(line, "ANMCTL")) return 0;
  const char* value = std::strchr(line, '=');
  if (!value) return 0;
  ++value;
  size_t length = std::strcspn(value, "\r\n");
  if (length > kAnimationPathLimit) length = kAnimationPathLimit;
  {
    StateLock lock(picker);
    if (!lock.state || !lock.state->path) return 0;
    std::memcpy(lock.state->path, value, length);
    lock.state->path[length] = 0;
  }
  AnimationPickerLoad(picker);
  return 1;
}

void AnimationPickerDestroy(WindowHandle picker) {
  MovableHandle handle = picker ? static_cast<MovableHandle>(DialogGetUserData(picker)) : nullptr;
  if (!handle) return;
  if (AnimationPickerState* s = static_cast<AnimationPickerState*>(MovableLock(handle))) {
    MovableFree(s->animation);
    MovableUnlock(handle);
  }
  MovableFree(handle);
  DialogSetUserData(picker, nullptr);
}
