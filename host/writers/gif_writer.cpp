// GIF output through giflib's streaming encoder, one row at a time straight from the frames.
#include "host/writers/gif_writer.h"

#include <gif_lib.h>

#include <algorithm>
#include <vector>

#include "host/writers/frame_canvas.h"
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

}  // namespace

int EncodeGif(const HostFile* file, int32_t loopCount, std::vector<uint8_t>* bytes,
              std::string* error) {
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

  ColorMapObject* map = GifMakeMapObject(colours, nullptr);
  if (!map) return Fail(error, "out of memory");
  for (int i = 0; i < colours; ++i) {
    map->Colors[i].Red = record.palette[i * 3];
    map->Colors[i].Green = record.palette[i * 3 + 1];
    map->Colors[i].Blue = record.palette[i * 3 + 2];
  }
  int background = 0;
  if (file->backgroundMode == static_cast<int64_t>(kBackgroundIndex) &&
      file->background < static_cast<uint64_t>(colours))
    background = static_cast<int>(file->background);
  int ok =
      EGifPutScreenDesc(gif, record.width, record.height, record.bits, background, map) == GIF_OK;
  GifFreeMapObject(map);
  if (!ok || !PutLoop(gif, loopCount)) return Fail(error, GifErrorString(gif->Error));
  if (!file->comment.empty() && EGifPutComment(gif, file->comment.c_str()) != GIF_OK)
    return Fail(error, GifErrorString(gif->Error));

  std::vector<GifPixelType> row;
  for (const HostFrame& frame : file->frames) {
    if (frame.dib.size() < kDibHeaderBytes) return Fail(error, "a damaged frame");
    const BitmapInfoHeader* header = reinterpret_cast<const BitmapInfoHeader*>(frame.dib.data());
    const int bits = header->biBitCount;
    if ((bits != 1 && bits != 4 && bits != 8) || header->biWidth <= 0 || header->biHeight <= 0 ||
        uint64_t{kDibHeaderBytes} + DibTableBytes(bits) +
                uint64_t{DibStride(header->biWidth, bits)} * header->biHeight >
            frame.dib.size())
      return Fail(error, "a damaged or true-colour frame");
    const int width = std::min<int>(header->biWidth, record.width);
    const int height = std::min<int>(header->biHeight, record.height);

    GraphicsControlBlock control{};
    control.DisposalMode = HostFrameDisposal(frame);
    control.UserInputFlag = false;
    control.DelayTime = std::clamp(frame.delay, 0, 65535);
    control.TransparentColor = frame.transparentIndex >= 0 && frame.transparentIndex < colours
                                   ? frame.transparentIndex
                                   : NO_TRANSPARENT_COLOR;
    GifByteType extension[4];
    EGifGCBToExtension(&control, extension);
    if (EGifPutExtension(gif, GRAPHICS_EXT_FUNC_CODE, 4, extension) != GIF_OK ||
        EGifPutImageDesc(gif, 0, 0, width, height, false, nullptr) != GIF_OK)
      return Fail(error, GifErrorString(gif->Error));
    row.resize(width);
    for (int y = 0; y < height; ++y) {
      for (int x = 0; x < width; ++x)
        row[x] = static_cast<GifPixelType>(ReadDibPixel(header, x, y));
      if (EGifPutLine(gif, row.data(), width) != GIF_OK)
        return Fail(error, GifErrorString(gif->Error));
    }
  }
  GifFileType* done = guard.gif;
  guard.gif = nullptr;
  if (EGifCloseFile(done, &code) != GIF_OK) return Fail(error, GifErrorString(code));
  return 1;
}
