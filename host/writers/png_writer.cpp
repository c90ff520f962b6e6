// PNG output through libpng's simplified writing interface.
#include "host/writers/png_writer.h"

#include <png.h>

#include <cstdio>
#include <cstring>

#include "host/writers/frame_canvas.h"
#include "host/writers/output_file.h"

int WritePngPicture(const uint8_t* rgba, int32_t width, int32_t height, const std::string& path,
                    std::string* error) {
  png_image image;
  memset(&image, 0, sizeof image);
  image.version = PNG_IMAGE_VERSION;
  image.width = static_cast<png_uint_32>(width);
  image.height = static_cast<png_uint_32>(height);
  image.format = PNG_FORMAT_RGBA;
  if (width <= 0 || height <= 0 ||
      !png_image_write_to_file(&image, path.c_str(), 0, rgba, 0, nullptr)) {
    *error = "cannot write " + path + ": " + (width > 0 ? image.message : "bad picture size");
    png_image_free(&image);
    return 0;
  }
  return 1;
}

std::string PngFrameName(size_t index) {
  char name[32];
  snprintf(name, sizeof name, "frame-%04zu.png", index + 1);
  return name;
}

int WritePngFrames(const HostFile* file, const std::string& folder, std::string* error) {
  FrameCanvas canvas;
  if (file->frames.empty() || !BeginFrameCanvas(&canvas, file)) {
    *error = "cannot write " + folder + ": no frames or a bad picture size";
    return 0;
  }
  for (size_t i = 0; i < file->frames.size(); ++i) {
    if (!DrawNextFrame(&canvas, file, i)) {
      *error = "cannot write " + folder + ": a damaged frame";
      return 0;
    }
    std::string path = folder + "/" + PngFrameName(i);
    NotePartialOutputFile(path);
    if (!WritePngPicture(canvas.rgba.data(), canvas.width, canvas.height, path, error)) return 0;
  }
  return 1;
}
