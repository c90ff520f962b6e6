// GIF output through giflib's streaming encoder, one row at a time straight from the frames.
#include "host/writers/gif_writer.h"

#include <fcntl.h>
#include <gif_lib.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

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

int Fail(std::string* error, const std::string& path, const char* what) {
  *error = "cannot write " + path + ": " + (what ? what : "GIF error");
  return 0;
}

// NETSCAPE2.0 application block: repeat forever.
int PutLoopForever(GifFileType* gif) {
  static const GifByteType kName[] = "NETSCAPE2.0";
  static const GifByteType kLoop[] = {1, 0, 0};
  return EGifPutExtensionLeader(gif, APPLICATION_EXT_FUNC_CODE) == GIF_OK &&
         EGifPutExtensionBlock(gif, 11, kName) == GIF_OK &&
         EGifPutExtensionBlock(gif, 3, kLoop) == GIF_OK && EGifPutExtensionTrailer(gif) == GIF_OK;
}

}  // namespace

int WriteGifFile(const HostFile* file, const std::string& path, std::string* error) {
  const FileObjectRecord& record = file->record;
  if (record.bits < 1 || record.bits > 8)
    return Fail(error, path, "GIF needs an indexed build (not true colour or alpha)");
  if (file->frames.empty()) return Fail(error, path, "no frames");
  if (record.width <= 0 || record.height <= 0 || record.width > 65535 || record.height > 65535)
    return Fail(error, path, "bad picture size");
  const int colours = 1 << record.bits;

  int code = 0;
  GifGuard guard;
  // Opened here rather than by giflib, which would make the file readable by its owner only.
  const int descriptor = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
  if (descriptor < 0) return Fail(error, path, strerror(errno));
  guard.gif = EGifOpenFileHandle(descriptor, &code);
  if (!guard.gif) {
    close(descriptor);
    return Fail(error, path, GifErrorString(code));
  }
  GifFileType* gif = guard.gif;
  EGifSetGifVersion(gif, true);

  ColorMapObject* map = GifMakeMapObject(colours, nullptr);
  if (!map) return Fail(error, path, "out of memory");
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
  if (!ok || !PutLoopForever(gif)) return Fail(error, path, GifErrorString(gif->Error));
  if (!file->comment.empty() && EGifPutComment(gif, file->comment.c_str()) != GIF_OK)
    return Fail(error, path, GifErrorString(gif->Error));

  std::vector<GifPixelType> row;
  for (const HostFrame& frame : file->frames) {
    if (frame.dib.size() < kDibHeaderBytes) return Fail(error, path, "a damaged frame");
    const BitmapInfoHeader* header = reinterpret_cast<const BitmapInfoHeader*>(frame.dib.data());
    const int bits = header->biBitCount;
    if ((bits != 1 && bits != 4 && bits != 8) || header->biWidth <= 0 || header->biHeight <= 0 ||
        uint64_t{kDibHeaderBytes} + DibTableBytes(bits) +
                uint64_t{DibStride(header->biWidth, bits)} * header->biHeight >
            frame.dib.size())
      return Fail(error, path, "a damaged or true-colour frame");
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
      return Fail(error, path, GifErrorString(gif->Error));
    row.resize(width);
    for (int y = 0; y < height; ++y) {
      for (int x = 0; x < width; ++x)
        row[x] = static_cast<GifPixelType>(ReadDibPixel(header, x, y));
      if (EGifPutLine(gif, row.data(), width) != GIF_OK)
        return Fail(error, path, GifErrorString(gif->Error));
    }
  }
  GifFileType* done = guard.gif;
  guard.gif = nullptr;
  if (EGifCloseFile(done, &code) != GIF_OK) return Fail(error, path, GifErrorString(code));
  return 1;
}
