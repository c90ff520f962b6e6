// GIF output through giflib's streaming encoder, one row at a time straight from the frames.
#include "host/writers/gif_writer.h"

#include <gif_lib.h>

#include <algorithm>
#include <vector>

#include "host/writers/frame_canvas.h"
#include "host/writers/gif_lzw.h"
#include "shell/packed_dib.h"

namespace {

struct GifGuard {
  GifFileType* gif = nullptr;
  ~GifGuard() {
    int code = 0;
    if (gif) EGifCloseFile(gif, &code);
  }
};

int Fail(std::string* error, const char* what) {
  *error = what ? what : "GIF error";
  return 0;
}

int AppendBytes(GifFileType* gif, const GifByteType* bytes, int count) {
  std::vector<uint8_t>* out = static_cast<std::vector<uint8_t>*>(gif->UserData);
  out->insert(out->end(), bytes, bytes + count);
  return count;
}

// NETSCAPE2.0 application block: the number of repeats, 0 for ever.
int PutLoop(GifFileType* gif, int32_t loopCount) {
  static const GifByteType kName[] = "NETSCAPE2.0";
  const int32_t loops = std::clamp(loopCount, 0, 65535);
  const GifByteType kLoop[] = {1, static_cast<GifByteType>(loops & 0xFF),
                               static_cast<GifByteType>(loops >> 8)};
  return EGifPutExtensionLeader(gif, APPLICATION_EXT_FUNC_CODE) == GIF_OK &&
         EGifPutExtensionBlock(gif, 11, kName) == GIF_OK &&
         EGifPutExtensionBlock(gif, 3, kLoop) == GIF_OK && EGifPutExtensionTrailer(gif) == GIF_OK;
}

// A frame's picture checked against its header, with its drawn size and its control block as the
// engine's records give them.
struct GifFrame {
  const BitmapInfoHeader* header = nullptr;
  int width = 0, height = 0;
  GraphicsControlBlock control{};
};

int ReadGifFrame(const HostFrame& frame, const FileObjectRecord& record, int colours,
                 GifFrame* out) {
  if (frame.dib.size() < kDibHeaderBytes) return 0;
  const BitmapInfoHeader* header = reinterpret_cast<const BitmapInfoHeader*>(frame.dib.data());
  const int bits = header->biBitCount;
  if ((bits != 1 && bits != 4 && bits != 8) || header->biWidth <= 0 || header->biHeight <= 0 ||
      uint64_t{kDibHeaderBytes} + DibTableBytes(bits) +
              uint64_t{DibStride(header->biWidth, bits)} * header->biHeight >
          frame.dib.size())
    return 0;
  out->header = header;
  out->width = std::min<int>(header->biWidth, record.width);
  out->height = std::min<int>(header->biHeight, record.height);
  out->control.DisposalMode = HostFrameDisposal(frame);
  out->control.UserInputFlag = false;
  out->control.DelayTime = std::clamp(frame.delay, 0, 65535);
  out->control.TransparentColor = frame.transparentIndex >= 0 && frame.transparentIndex < colours
                                      ? frame.transparentIndex
                                      : NO_TRANSPARENT_COLOR;
  return 1;
}

int PutImage(GifFileType* gif, const GraphicsControlBlock& control, int left, int top, int width,
             int height, const GifPixelType* pixels, int stride) {
  GifByteType extension[4];
  EGifGCBToExtension(&control, extension);
  if (EGifPutExtension(gif, GRAPHICS_EXT_FUNC_CODE, 4, extension) != GIF_OK ||
      EGifPutImageDesc(gif, left, top, width, height, false, nullptr) != GIF_OK)
    return 0;
  for (int y = 0; y < height; ++y)
    if (EGifPutLine(gif, const_cast<GifPixelType*>(pixels + y * stride), width) != GIF_OK) return 0;
  return 1;
}

// Writes an image whose pixels are already compressed (`codes`, see gif_lzw.h).
int PutCompressedImage(GifFileType* gif, const GraphicsControlBlock& control, int left, int top,
                       int width, int height, int minCodeSize, const std::vector<uint8_t>& codes) {
  GifByteType extension[4];
  EGifGCBToExtension(&control, extension);
  if (EGifPutExtension(gif, GRAPHICS_EXT_FUNC_CODE, 4, extension) != GIF_OK ||
      EGifPutImageDesc(gif, left, top, width, height, false, nullptr) != GIF_OK)
    return 0;
  GifByteType block[256];
  for (size_t at = 0; at < codes.size(); at += 255) {
    const size_t n = std::min<size_t>(255, codes.size() - at);
    block[0] = static_cast<GifByteType>(n);
    std::copy_n(codes.begin() + static_cast<std::ptrdiff_t>(at), n, block + 1);
    if ((at == 0 ? EGifPutCode(gif, minCodeSize, block) : EGifPutCodeNext(gif, block)) != GIF_OK)
      return 0;
  }
  return EGifPutCodeNext(gif, nullptr) == GIF_OK;
}

// What a decoder shows after each frame of the stream as the records describe it, as palette
// indices, -1 where nothing is shown. Returns 0 when a frame is damaged.
struct Composer {
  std::vector<int16_t> shown;
  int width = 0, previousDisposal = DISPOSE_DO_NOT, previousWidth = 0, previousHeight = 0;
};

void StartComposer(Composer* composer, int width, int height) {
  composer->shown.assign(static_cast<size_t>(width) * height, -1);
  composer->width = width;
  composer->previousDisposal = DISPOSE_DO_NOT;
}

void Compose(Composer* c, const GifFrame& frame) {
  if (c->previousDisposal == DISPOSE_BACKGROUND)
    for (int y = 0; y < c->previousHeight; ++y)
      std::fill_n(&c->shown[static_cast<size_t>(y) * c->width], c->previousWidth, int16_t{-1});
  const int key = frame.control.TransparentColor;
  for (int y = 0; y < frame.height; ++y)
    for (int x = 0; x < frame.width; ++x) {
      const int index = static_cast<int>(ReadDibPixel(frame.header, x, y));
      if (index != key)
        c->shown[static_cast<size_t>(y) * c->width + x] = static_cast<int16_t>(index);
    }
  c->previousDisposal = frame.control.DisposalMode;
  c->previousWidth = frame.width;
  c->previousHeight = frame.height;
}

// Frames written as they come: each whole, with its own control block.
int PutFramesAsRecorded(GifFileType* gif, const HostFile* file, int colours, std::string* error) {
  std::vector<GifPixelType> pixels;
  for (const HostFrame& frame : file->frames) {
    GifFrame f;
    if (!ReadGifFrame(frame, file->record, colours, &f))
      return Fail(error, "a damaged or true-colour frame");
    pixels.resize(static_cast<size_t>(f.width) * f.height);
    for (int y = 0; y < f.height; ++y)
      for (int x = 0; x < f.width; ++x)
        pixels[static_cast<size_t>(y) * f.width + x] =
            static_cast<GifPixelType>(ReadDibPixel(f.header, x, y));
    if (!PutImage(gif, f.control, 0, 0, f.width, f.height, pixels.data(), f.width))
      return Fail(error, GifErrorString(gif->Error));
  }
  return 1;
}

// Nonzero when every picture the decoder shows covers the whole screen (nothing ever shows
// through), which lets each frame after the first carry only what changed. `used` receives the
// indices that are shown.
int ShowsOnlyOpaqueFrames(const HostFile* file, int colours, std::vector<uint8_t>* used) {
  Composer composer;
  StartComposer(&composer, file->record.width, file->record.height);
  used->assign(256, 0);
  for (const HostFrame& frame : file->frames) {
    GifFrame f;
    if (!ReadGifFrame(frame, file->record, colours, &f)) return 0;
    Compose(&composer, f);
    for (const int16_t index : composer.shown) {
      if (index < 0) return 0;
      (*used)[index] = 1;
    }
  }
  return 1;
}

// Each frame after the first as the rectangle that changed, its unchanged pixels free to take the
// index `free` (-1: none) where that encodes smaller; every frame is kept on screen for the next.
// Shown indices are written through `remap` into a colour table of `tableBits`.
int PutChangedRectangles(GifFileType* gif, const HostFile* file, int colours,
                         const std::vector<int>& remap, int tableBits, int free,
                         std::string* error) {
  const int width = file->record.width, height = file->record.height;
  Composer composer;
  StartComposer(&composer, width, height);
  std::vector<int16_t> before;
  std::vector<uint8_t> plain, unchanged, codes, marked;
  const int minCodeSize = std::max(2, tableBits);
  for (size_t n = 0; n < file->frames.size(); ++n) {
    GifFrame f;
    if (!ReadGifFrame(file->frames[n], file->record, colours, &f))
      return Fail(error, "a damaged or true-colour frame");
    before = composer.shown;
    Compose(&composer, f);
    const std::vector<int16_t>& now = composer.shown;
    int left = 0, top = 0, right = width - 1, bottom = height - 1;
    if (n > 0) {
      left = width, top = height, right = -1, bottom = -1;
      for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
          if (now[static_cast<size_t>(y) * width + x] !=
              before[static_cast<size_t>(y) * width + x]) {
            left = std::min(left, x), right = std::max(right, x);
            top = std::min(top, y), bottom = std::max(bottom, y);
          }
      if (right < 0) left = top = right = bottom = 0;  // nothing changed: one pixel, as it is
    }
    const int w = right - left + 1, h = bottom - top + 1;
    plain.resize(static_cast<size_t>(w) * h);
    unchanged.resize(plain.size());
    for (int y = 0; y < h; ++y)
      for (int x = 0; x < w; ++x) {
        const size_t at = static_cast<size_t>(top + y) * width + left + x;
        const size_t to = static_cast<size_t>(y) * w + x;
        plain[to] = static_cast<uint8_t>(remap[now[at]]);
        unchanged[to] = n > 0 && now[at] == before[at];
      }
    // The rectangle as it is, and with its unchanged pixels free to take the mark where that
    // spells longer strings; the smaller is written. (Writing every unchanged pixel as the mark
    // was tried as a third choice: over the 21 default animations it was smaller for under one
    // frame in ten, by a few bytes, and cost a third of the coder's time.)
    GraphicsControlBlock control = f.control;
    control.DisposalMode = DISPOSE_DO_NOT;
    control.TransparentColor = NO_TRANSPARENT_COLOR;
    CompressGifPixels(plain.data(), nullptr, plain.size(), minCodeSize, -1, &codes);
    if (n > 0 && free >= 0) {
      CompressGifPixels(plain.data(), unchanged.data(), plain.size(), minCodeSize, free, &marked);
      if (marked.size() < codes.size()) {
        codes.swap(marked);
        control.TransparentColor = free;
      }
    }
    if (!PutCompressedImage(gif, control, left, top, w, h, minCodeSize, codes))
      return Fail(error, GifErrorString(gif->Error));
  }
  return 1;
}

}  // namespace

int EncodeGif(const HostFile* file, int32_t loopCount, std::vector<uint8_t>* bytes,
              std::string* error, int optimise) {
  const FileObjectRecord& record = file->record;
  if (record.bits < 1 || record.bits > 8)
    return Fail(error, "GIF needs an indexed build (not true colour or alpha)");
  if (file->frames.empty()) return Fail(error, "no frames");
  if (record.width <= 0 || record.height <= 0 || record.width > 65535 || record.height > 65535)
    return Fail(error, "bad picture size");
  const int colours = 1 << record.bits;

  int code = 0;
  GifGuard guard;
  bytes->clear();
  guard.gif = EGifOpen(bytes, AppendBytes, &code);
  if (!guard.gif) return Fail(error, GifErrorString(code));
  GifFileType* gif = guard.gif;
  EGifSetGifVersion(gif, true);

  // Frames through which something shows (transparent builds) keep their records as they are.
  // Otherwise only the colours shown go into the table, in their order, with one index more for
  // marking unchanged pixels when the table's size leaves room for it.
  std::vector<uint8_t> used;
  const int compact = optimise && ShowsOnlyOpaqueFrames(file, colours, &used);
  std::vector<int> remap(256, 0), kept;
  for (int i = 0; i < colours; ++i)
    if (!compact || used[i]) remap[i] = static_cast<int>(kept.size()), kept.push_back(i);
  int tableBits = compact ? 1 : record.bits;
  while (compact && (1 << tableBits) < static_cast<int>(kept.size())) ++tableBits;
  const int free = compact && static_cast<int>(kept.size()) < (1 << tableBits)
                       ? static_cast<int>(kept.size())
                       : -1;
  ColorMapObject* map = GifMakeMapObject(1 << tableBits, nullptr);
  if (!map) return Fail(error, "out of memory");
  for (size_t i = 0; i < kept.size(); ++i) {
    map->Colors[i].Red = record.palette[kept[i] * 3];
    map->Colors[i].Green = record.palette[kept[i] * 3 + 1];
    map->Colors[i].Blue = record.palette[kept[i] * 3 + 2];
  }
  int background = 0;
  if (file->backgroundMode == static_cast<int64_t>(kBackgroundIndex) &&
      file->background < static_cast<uint64_t>(colours))
    background = compact && !used[file->background] ? std::max(free, 0)
                                                    : remap[static_cast<int>(file->background)];
  int ok =
      EGifPutScreenDesc(gif, record.width, record.height, tableBits, background, map) == GIF_OK;
  GifFreeMapObject(map);
  if (!ok || !PutLoop(gif, loopCount)) return Fail(error, GifErrorString(gif->Error));
  if (!file->comment.empty() && EGifPutComment(gif, file->comment.c_str()) != GIF_OK)
    return Fail(error, GifErrorString(gif->Error));

  if (compact) {
    if (!PutChangedRectangles(gif, file, colours, remap, tableBits, free, error)) return 0;
  } else if (!PutFramesAsRecorded(gif, file, colours, error)) {
    return 0;
  }
  GifFileType* done = guard.gif;
  guard.gif = nullptr;
  if (EGifCloseFile(done, &code) != GIF_OK) return Fail(error, GifErrorString(code));
  return 1;
}
