// PNG output through libpng's simplified writing interface, into memory.
#include "host/writers/png_writer.h"

#include <png.h>

#include <cstring>

#include "host/writers/frame_canvas.h"

int EncodePng(const uint8_t* rgba, int32_t width, int32_t height, std::vector<uint8_t>* bytes,
              std::string* error) {
  if (width <= 0 || height <= 0) return *error = "bad picture size", 0;
  png_image image;
  memset(&image, 0, sizeof image);
  image.version = PNG_IMAGE_VERSION;
  image.width = static_cast<png_uint_32>(width);
  image.height = static_cast<png_uint_32>(height);
  image.format = PNG_FORMAT_RGBA;
  png_alloc_size_t size = 0;
  int ok = png_image_write_get_memory_size(image, size, 0, rgba, 0, nullptr);
  if (ok) {
    bytes->resize(size);
    ok = png_image_write_to_memory(&image, bytes->data(), &size, 0, rgba, 0, nullptr);
    bytes->resize(size);
  }
  if (!ok) *error = image.message[0] ? image.message : "PNG error";
  png_image_free(&image);
  return ok;
}

int EncodePngFrames(const HostFile* file, int32_t index,
                    std::vector<std::vector<uint8_t>>* pictures, std::string* error) {
  FrameCanvas canvas;
  if (file->frames.empty() || !BeginFrameCanvas(&canvas, file))
    return *error = "no frames or a bad picture size", 0;
  if (index >= static_cast<int32_t>(file->frames.size()))
    return *error = "there is no frame " + std::to_string(index + 1) + " (the animation has " +
                    std::to_string(file->frames.size()) + ")",
           0;
  pictures->clear();
  const size_t last = index < 0 ? file->frames.size() - 1 : static_cast<size_t>(index);
  for (size_t i = 0; i <= last; ++i) {
    if (!DrawNextFrame(&canvas, file, i)) return *error = "a damaged frame", 0;
    if (index >= 0 && i != last) continue;
    pictures->emplace_back();
    if (!EncodePng(canvas.rgba.data(), canvas.width, canvas.height, &pictures->back(), error))
      return 0;
  }
  return 1;
}
