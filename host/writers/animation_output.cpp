// Output by name: picks the writer, and wraps it in a temporary file renamed when complete.
#include "host/writers/animation_output.h"

#include <algorithm>
#include <cctype>
#include <filesystem>

#include "host/writers/frame_canvas.h"
#include "host/writers/gif_writer.h"
#include "host/writers/output_file.h"
#include "host/writers/png_writer.h"
#include "host/writers/webp_writer.h"

OutputKind OutputKindForPath(const std::string& path) {
  if (path.empty()) return OutputUnknown;
  if (path.back() == '/') return OutputPngFolder;
  std::filesystem::path name(path);
  std::string extension = name.extension().string();
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](unsigned char c) { return static_cast<char>(tolower(c)); });
  if (extension.empty()) return OutputPngFolder;
  if (extension == ".gif") return OutputGif;
  if (extension == ".webp") return OutputWebp;
  if (extension == ".png") return OutputPng;
  return OutputUnknown;
}

int WriteAnimationOutput(const HostFile* file, int32_t millisecondsPerDelay,
                         const std::string& path, std::string* error) {
  const OutputKind kind = OutputKindForPath(path);
  if (kind == OutputUnknown) {
    *error = "unknown output type: " + path + " (use .gif, .webp, .png or a folder)";
    return 0;
  }
  OutputTarget target;
  if (!BeginOutput(&target, path, kind == OutputPngFolder, error)) return 0;
  int ok = 0;
  switch (kind) {
    case OutputGif:
      ok = WriteGifFile(file, target.temporary, error);
      break;
    case OutputWebp:
      ok = WriteWebpFile(file, millisecondsPerDelay, target.temporary, error);
      break;
    case OutputPng: {
      FrameCanvas canvas;
      ok =
          BeginFrameCanvas(&canvas, file) && DrawNextFrame(&canvas, file, 0) &&
          WritePngPicture(canvas.rgba.data(), canvas.width, canvas.height, target.temporary, error);
      if (!ok && error->empty()) *error = "cannot write " + path + ": no usable frame";
      break;
    }
    case OutputPngFolder:
      ok = WritePngFrames(file, target.temporary, error);
      break;
    case OutputUnknown:
      break;
  }
  // Messages name the place the user asked for, not the temporary one.
  if (!ok) {
    size_t at = error->find(target.temporary);
    if (at != std::string::npos) error->replace(at, target.temporary.size(), path);
    AbandonOutput(&target);
    return 0;
  }
  return CommitOutput(&target, error);
}

int WritePictureOutput(const uint8_t* rgba, int32_t width, int32_t height, const std::string& path,
                       std::string* error) {
  if (OutputKindForPath(path) != OutputPng) {
    *error = "unknown output type: " + path + " (a picture is written as .png)";
    return 0;
  }
  OutputTarget target;
  if (!BeginOutput(&target, path, 0, error)) return 0;
  if (!WritePngPicture(rgba, width, height, target.temporary, error)) {
    size_t at = error->find(target.temporary);
    if (at != std::string::npos) error->replace(at, target.temporary.size(), path);
    AbandonOutput(&target);
    return 0;
  }
  return CommitOutput(&target, error);
}
