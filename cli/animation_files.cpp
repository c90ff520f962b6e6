// Reading GIF, WebP and PNG files into composed frames, and the AnimationBlock made of them.
#include "cli/animation_files.h"

#include <gif_lib.h>
#include <png.h>
#include <webp/demux.h>

#include <cstring>

#include "cli/picture_files.h"
#include "host/bmp_file.h"
#include "shell/host_interface.h"
#include "shell/packed_dib.h"

namespace {

constexpr uint8_t kUncovered = 0xFF;  // white, where nothing has been drawn

int SizeAllowed(int64_t width, int64_t height, size_t frames) {
  if (width <= 0 || height <= 0 || width > kAnimationLargestSide ||
      height > kAnimationLargestSide)
    return 0;
  return static_cast<uint64_t>(width * height * 3) * (frames ? frames : 1) <=
         kAnimationLargestBytes;
}

// RGBA over white, truncating as the built-in clip blends.
void OverWhite(const uint8_t* rgba, size_t pixels, uint8_t* rgb) {
  for (size_t i = 0; i < pixels; ++i, rgba += 4, rgb += 3) {
    const uint32_t a = rgba[3];
    for (int c = 0; c < 3; ++c) rgb[c] = static_cast<uint8_t>(rgba[c] * a / 255 + 255 * (255 - a) / 255);
  }
}

struct MemoryReader {
  const uint8_t* bytes;
  size_t size, at;
};

int ReadGifBytes(GifFileType* gif, GifByteType* into, int wanted) {
  MemoryReader* r = static_cast<MemoryReader*>(gif->UserData);
  size_t n = wanted > 0 ? static_cast<size_t>(wanted) : 0;
  if (n > r->size - r->at) n = r->size - r->at;
  std::memcpy(into, r->bytes + r->at, n);
  r->at += n;
  return static_cast<int>(n);
}

int ReadGif(const uint8_t* bytes, size_t size, ComposedAnimation* out) {
  MemoryReader reader{bytes, size, 0};
  int error = 0;
  GifFileType* gif = DGifOpen(&reader, ReadGifBytes, &error);
  if (!gif) return 0;
  struct Closer {
    GifFileType* gif;
    ~Closer() {
      int e = 0;
      DGifCloseFile(gif, &e);
    }
  } closer{gif};
  if (DGifSlurp(gif) != GIF_OK || gif->ImageCount <= 0) return 0;
  const int32_t w = gif->SWidth, h = gif->SHeight;
  if (!SizeAllowed(w, h, static_cast<size_t>(gif->ImageCount))) return 0;
  const size_t canvasBytes = static_cast<size_t>(w) * h * 3;
  std::vector<uint8_t> canvas(canvasBytes, kUncovered), previous;
  out->width = w;
  out->height = h;
  for (int i = 0; i < gif->ImageCount; ++i) {
    const SavedImage& image = gif->SavedImages[i];
    const GifImageDesc& d = image.ImageDesc;
    const ColorMapObject* map = d.ColorMap ? d.ColorMap : gif->SColorMap;
    if (!map || !image.RasterBits) return 0;
    GraphicsControlBlock gcb{DISPOSAL_UNSPECIFIED, false, 0, NO_TRANSPARENT_COLOR};
    DGifSavedExtensionToGCB(gif, i, &gcb);
    if (gcb.DisposalMode == DISPOSE_PREVIOUS) previous = canvas;
    for (int y = 0; y < d.Height; ++y)
      for (int x = 0; x < d.Width; ++x) {
        const int cx = d.Left + x, cy = d.Top + y;
        if (cx < 0 || cy < 0 || cx >= w || cy >= h) continue;
        const int index = image.RasterBits[static_cast<size_t>(y) * d.Width + x];
        if (index == gcb.TransparentColor || index >= map->ColorCount) continue;
        uint8_t* p = canvas.data() + (static_cast<size_t>(cy) * w + cx) * 3;
        p[0] = map->Colors[index].Red;
        p[1] = map->Colors[index].Green;
        p[2] = map->Colors[index].Blue;
      }
    out->frames.push_back(canvas);
    out->delays.push_back(gcb.DelayTime);
    if (gcb.DisposalMode == DISPOSE_BACKGROUND) {
      for (int y = d.Top; y < d.Top + d.Height; ++y)
        for (int x = d.Left; x < d.Left + d.Width; ++x)
          if (x >= 0 && y >= 0 && x < w && y < h)
            std::memset(canvas.data() + (static_cast<size_t>(y) * w + x) * 3, kUncovered, 3);
    } else if (gcb.DisposalMode == DISPOSE_PREVIOUS && !previous.empty()) {
      canvas.swap(previous);
    }
  }
  return 1;
}

int ReadWebp(const uint8_t* bytes, size_t size, ComposedAnimation* out) {
  WebPAnimDecoderOptions options;
  if (!WebPAnimDecoderOptionsInit(&options)) return 0;
  options.color_mode = MODE_RGBA;
  options.use_threads = 0;
  const WebPData data{bytes, size};
  WebPAnimDecoder* decoder = WebPAnimDecoderNew(&data, &options);
  if (!decoder) return 0;
  struct Closer {
    WebPAnimDecoder* d;
    ~Closer() { WebPAnimDecoderDelete(d); }
  } closer{decoder};
  WebPAnimInfo info;
  if (!WebPAnimDecoderGetInfo(decoder, &info) || info.frame_count == 0 ||
      !SizeAllowed(info.canvas_width, info.canvas_height, info.frame_count))
    return 0;
  out->width = static_cast<int32_t>(info.canvas_width);
  out->height = static_cast<int32_t>(info.canvas_height);
  const size_t pixels = static_cast<size_t>(out->width) * out->height;
  int before = 0;
  while (WebPAnimDecoderHasMoreFrames(decoder)) {
    uint8_t* rgba = nullptr;
    int timestamp = 0;
    if (!WebPAnimDecoderGetNext(decoder, &rgba, &timestamp)) return 0;
    std::vector<uint8_t> frame(pixels * 3);
    OverWhite(rgba, pixels, frame.data());
    out->frames.push_back(std::move(frame));
    // Milliseconds to hundredths, each frame's end less the one before.
    out->delays.push_back((timestamp - before) / 10);
    before = timestamp;
  }
  return !out->frames.empty();
}

int ReadPng(const uint8_t* bytes, size_t size, ComposedAnimation* out) {
  png_image image;
  std::memset(&image, 0, sizeof image);
  image.version = PNG_IMAGE_VERSION;
  if (!png_image_begin_read_from_memory(&image, bytes, size)) return 0;
  image.format = PNG_FORMAT_RGBA;
  if (!SizeAllowed(image.width, image.height, 1)) {
    png_image_free(&image);
    return 0;
  }
  std::vector<uint8_t> rgba(PNG_IMAGE_SIZE(image));
  if (!png_image_finish_read(&image, nullptr, rgba.data(), 0, nullptr)) return 0;
  out->width = static_cast<int32_t>(image.width);
  out->height = static_cast<int32_t>(image.height);
  std::vector<uint8_t> frame(static_cast<size_t>(out->width) * out->height * 3);
  OverWhite(rgba.data(), frame.size() / 3, frame.data());
  out->frames.push_back(std::move(frame));
  out->delays.push_back(kStillPictureDelay);
  return 1;
}

}  // namespace

int ReadAnimationBytes(const uint8_t* bytes, size_t size, ComposedAnimation* out) {
  *out = ComposedAnimation{};
  if (!bytes || size < 12) return 0;
  int ok = 0;
  if (std::memcmp(bytes, "GIF8", 4) == 0)
    ok = ReadGif(bytes, size, out);
  else if (std::memcmp(bytes, "RIFF", 4) == 0 && std::memcmp(bytes + 8, "WEBP", 4) == 0)
    ok = ReadWebp(bytes, size, out);
  else if (std::memcmp(bytes, "\x89PNG", 4) == 0)
    ok = ReadPng(bytes, size, out);
  if (!ok) *out = ComposedAnimation{};
  return ok;
}

int ReadAnimationFile(const char* path, ComposedAnimation* out) {
  const std::vector<uint8_t> bytes = ReadWholeFile(path);
  return ReadAnimationBytes(bytes.data(), bytes.size(), out);
}
