// Animated WebP output: canvases composited in order, handed to WebPAnimEncoder, written at once.
#include "host/writers/webp_writer.h"

#include <webp/encode.h>
#include <webp/mux.h>

#include <cstdio>
#include <memory>

#include "host/writers/frame_canvas.h"

namespace {

int Fail(std::string* error, const std::string& path, const char* what) {
  *error = "cannot write " + path + ": " + what;
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

int WriteWebpFile(const HostFile* file, int32_t millisecondsPerDelay, const std::string& path,
                  std::string* error) {
  if (file->frames.empty()) return Fail(error, path, "no frames");
  FrameCanvas canvas;
  if (!BeginFrameCanvas(&canvas, file) || canvas.width > WEBP_MAX_DIMENSION ||
      canvas.height > WEBP_MAX_DIMENSION)
    return Fail(error, path, "bad picture size");

  WebPAnimEncoderOptions options;
  WebPConfig config;
  if (!WebPAnimEncoderOptionsInit(&options) || !WebPConfigInit(&config) ||
      !WebPConfigLosslessPreset(&config, 1))
    return Fail(error, path, "libwebp version mismatch");
  options.anim_params.loop_count = 0;
  options.anim_params.bgcolor = 0;
  EncoderGuard encoder;
  encoder.encoder = WebPAnimEncoderNew(canvas.width, canvas.height, &options);
  if (!encoder.encoder) return Fail(error, path, "out of memory");

  int timestamp = 0;
  for (size_t i = 0; i < file->frames.size(); ++i) {
    if (!DrawNextFrame(&canvas, file, i)) return Fail(error, path, "a damaged frame");
    PictureGuard picture;
    if (!WebPPictureInit(&picture.picture)) return Fail(error, path, "libwebp version mismatch");
    picture.picture.use_argb = 1;
    picture.picture.width = canvas.width;
    picture.picture.height = canvas.height;
    picture.ready = 1;
    if (!WebPPictureImportRGBA(&picture.picture, canvas.rgba.data(), canvas.width * 4) ||
        !WebPAnimEncoderAdd(encoder.encoder, &picture.picture, timestamp, &config))
      return Fail(error, path, WebPAnimEncoderGetError(encoder.encoder));
    int delay = file->frames[i].delay > 0 ? file->frames[i].delay : 1;
    timestamp += delay * millisecondsPerDelay;
  }
  WebPData data;
  WebPDataInit(&data);
  if (!WebPAnimEncoderAdd(encoder.encoder, nullptr, timestamp, nullptr) ||
      !WebPAnimEncoderAssemble(encoder.encoder, &data))
    return Fail(error, path, WebPAnimEncoderGetError(encoder.encoder));
  std::unique_ptr<WebPData, void (*)(WebPData*)> owned(&data, WebPDataClear);
  FILE* out = fopen(path.c_str(), "wb");
  if (!out) return Fail(error, path, "cannot create the file");
  int written = fwrite(data.bytes, 1, data.size, out) == data.size;
  if (fclose(out) != 0) written = 0;
  if (!written) return Fail(error, path, "write failed");
  return 1;
}
