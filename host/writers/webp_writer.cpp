// Animated WebP output: canvases composited in order, handed to WebPAnimEncoder, written at once.
#include "host/writers/webp_writer.h"

#include <webp/encode.h>
#include <webp/mux.h>

#include <algorithm>
#include <memory>

#include "host/writers/frame_canvas.h"

namespace {

int Fail(std::string* error, const char* what) {
  *error = what;
  return 0;
}

struct EncoderGuard {
  WebPAnimEncoder* encoder = nullptr;
  ~EncoderGuard() {
    if (encoder) WebPAnimEncoderDelete(encoder);
  }
};

struct PictureGuard {
  WebPPicture picture;
  int ready = 0;
  ~PictureGuard() {
    if (ready) WebPPictureFree(&picture);
  }
};

}  // namespace

int EncodeWebp(const HostFile* file, int32_t loopCount, std::vector<uint8_t>* bytes,
               std::string* error) {
  static_assert(kWebpLargestSide == WEBP_MAX_DIMENSION);
  if (file->frames.empty()) return Fail(error, "no frames");
  FrameCanvas canvas;
  if (!BeginFrameCanvas(&canvas, file) || canvas.width > WEBP_MAX_DIMENSION ||
      canvas.height > WEBP_MAX_DIMENSION)
    return Fail(error, "bad picture size");

  WebPAnimEncoderOptions options;
  WebPConfig config;
  if (!WebPAnimEncoderOptionsInit(&options) || !WebPConfigInit(&config) ||
      !WebPConfigLosslessPreset(&config, 1))
    return Fail(error, "libwebp version mismatch");
  options.anim_params.loop_count = std::clamp(loopCount, 0, 65535);
  options.anim_params.bgcolor = 0;
  EncoderGuard encoder;
  encoder.encoder = WebPAnimEncoderNew(canvas.width, canvas.height, &options);
  if (!encoder.encoder) return Fail(error, "out of memory");

  int timestamp = 0;
  for (size_t i = 0; i < file->frames.size(); ++i) {
    if (!DrawNextFrame(&canvas, file, i)) return Fail(error, "a damaged frame");
    PictureGuard picture;
    if (!WebPPictureInit(&picture.picture)) return Fail(error, "libwebp version mismatch");
    picture.picture.use_argb = 1;
    picture.picture.width = canvas.width;
    picture.picture.height = canvas.height;
    picture.ready = 1;
    if (!WebPPictureImportRGBA(&picture.picture, canvas.rgba.data(), canvas.width * 4) ||
        !WebPAnimEncoderAdd(encoder.encoder, &picture.picture, timestamp, &config))
      return Fail(error, WebPAnimEncoderGetError(encoder.encoder));
    int delay = file->frames[i].delay > 0 ? file->frames[i].delay : 1;
    timestamp += delay * 10;
  }
  WebPData data;
  WebPDataInit(&data);
  if (!WebPAnimEncoderAdd(encoder.encoder, nullptr, timestamp, nullptr) ||
      !WebPAnimEncoderAssemble(encoder.encoder, &data))
    return Fail(error, WebPAnimEncoderGetError(encoder.encoder));
  std::unique_ptr<WebPData, void (*)(WebPData*)> owned(&data, WebPDataClear);
  bytes->assign(data.bytes, data.bytes + data.size);
  return 1;
}
