// Composites host frames into RGBA canvases for the writers that store whole pictures.
#include "host/writers/frame_canvas.h"

#include <algorithm>
#include <cstring>

#include "shell/packed_dib.h"

int32_t HostFrameDisposal(const HostFrame& frame) {
  return frame.transparent && frame.transparentIndex >= 0 ? kDisposalClear : kDisposalKeep;
}

int BeginFrameCanvas(FrameCanvas* canvas, const HostFile* file) {
  const int32_t width = file->record.width, height = file->record.height;
  if (width <= 0 || height <= 0 || width > 65535 || height > 65535) return 0;
  canvas->width = width;
  canvas->height = height;
  canvas->rgba.assign(static_cast<size_t>(width) * height * 4, 0);
  canvas->previousDisposal = kDisposalKeep;
  canvas->previousWidth = canvas->previousHeight = 0;
  return 1;
}

int DrawNextFrame(FrameCanvas* canvas, const HostFile* file, size_t index) {
  if (index >= file->frames.size()) return 0;
  const HostFrame& frame = file->frames[index];
  if (frame.dib.size() < kDibHeaderBytes) return 0;
  const BitmapInfoHeader* header = reinterpret_cast<const BitmapInfoHeader*>(frame.dib.data());
  const int32_t bits = header->biBitCount;
  if (bits != 1 && bits != 4 && bits != 8 && bits != 24 && bits != 32) return 0;
  if (header->biWidth <= 0 || header->biHeight <= 0) return 0;
  // The session only keeps pictures whose bits fit their block; check again all the same.
  const uint64_t need = uint64_t{header->biSize} + DibTableBytes(bits) +
                        uint64_t{DibStride(header->biWidth, bits)} * header->biHeight;
  if (header->biSize != kDibHeaderBytes || need > frame.dib.size()) return 0;

  if (canvas->previousDisposal == kDisposalClear) {
    for (int32_t y = 0; y < canvas->previousHeight; ++y)
      memset(&canvas->rgba[static_cast<size_t>(y) * canvas->width * 4], 0,
             static_cast<size_t>(canvas->previousWidth) * 4);
  }
  const int32_t width = std::min(header->biWidth, canvas->width);
  const int32_t height = std::min(header->biHeight, canvas->height);
  const uint8_t* palette = file->record.palette;
  const int32_t keyIndex = frame.transparentIndex;
  const int clearKey = frame.transparent != 0;
  for (int32_t y = 0; y < height; ++y) {
    uint8_t* out = &canvas->rgba[static_cast<size_t>(y) * canvas->width * 4];
    for (int32_t x = 0; x < width; ++x, out += 4) {
      const uint32_t value = ReadDibPixel(header, x, y);
      if (bits <= 8) {
        if (static_cast<int32_t>(value) == keyIndex) {
          if (clearKey) memset(out, 0, 4);
          continue;
        }
        const uint8_t* rgb = palette + value * 3;
        out[0] = rgb[0];
        out[1] = rgb[1];
        out[2] = rgb[2];
        out[3] = 255;
      } else {
        out[0] = static_cast<uint8_t>(value);
        out[1] = static_cast<uint8_t>(value >> 8);
        out[2] = static_cast<uint8_t>(value >> 16);
        out[3] = bits == 32 ? static_cast<uint8_t>(value >> 24) : 255;
      }
    }
  }
  canvas->previousDisposal = HostFrameDisposal(frame);
  canvas->previousWidth = width;
  canvas->previousHeight = height;
  return 1;
}
