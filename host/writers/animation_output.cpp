// Output by name: picks the encoder, then writes its bytes through the checked writer.
#include "host/writers/animation_output.h"

#include <sys/stat.h>

#include <algorithm>
#include <cctype>
#include <vector>

#include "host/writers/gif_writer.h"
#include "host/writers/output_file.h"
#include "host/writers/png_writer.h"
#include "host/writers/webp_writer.h"

namespace {

OutputKind KindForFormat(std::string format) {
  std::transform(format.begin(), format.end(), format.begin(),
                 [](unsigned char c) { return static_cast<char>(tolower(c)); });
  if (format == "gif") return OutputGif;
  if (format == "webp") return OutputWebp;
  if (format == "png") return OutputPng;
  return OutputUnknown;
}

}  // namespace

OutputKind OutputKindFor(const std::string& path, const std::string& format) {
  if (path.empty()) return OutputUnknown;
  struct stat info;
  const int exists = path != "-" && stat(path.c_str(), &info) == 0;
  if (path.back() == '/' || (exists && S_ISDIR(info.st_mode))) return OutputPngFolder;
  if (!format.empty()) return KindForFormat(format);
  // Standard output and devices take a GIF unless told otherwise.
  if (path == "-" || (exists && !S_ISREG(info.st_mode))) return OutputGif;
  const size_t slash = path.find_last_of('/');
  const std::string name = slash == std::string::npos ? path : path.substr(slash + 1);
  const size_t dot = name.find_last_of('.');
  if (dot == std::string::npos || dot == 0) return OutputPngFolder;
  return KindForFormat(name.substr(dot + 1));
}

int CheckOutputPlace(const std::string& path, OutputKind kind, std::string* error) {
  if (kind == OutputPngFolder) {
    if (path == "-") return *error = "a folder of frames cannot go to the standard output", 0;
    return CheckFrameFolder(path, error);
  }
  return CheckOutputFile(path, error);
}

int WriteAnimationOutput(const HostFile* file, const OutputOptions& options,
                         const std::string& path, std::string* error, uint64_t* written) {
  const OutputKind kind = OutputKindFor(path, options.format);
  std::vector<uint8_t> bytes;
  std::vector<std::vector<uint8_t>> pictures;
  int ok = 0;
  switch (kind) {
    case OutputGif:
      ok = EncodeGif(file, options.loopCount, &bytes, error);
      break;
    case OutputWebp:
      ok = EncodeWebp(file, options.loopCount, &bytes, error);
      break;
    case OutputPng:
      ok = EncodePngFrames(file, options.frame, &pictures, error);
      if (ok) bytes.swap(pictures[0]);
      break;
    case OutputPngFolder:
      ok = EncodePngFrames(file, -1, &pictures, error);
      break;
    case OutputUnknown:
      *error = "unknown output type: " + path + " (use .gif, .webp, .png or a folder)";
      return 0;
  }
  if (!ok) {
    *error =
        "cannot write " + (path == "-" ? std::string("the standard output") : path) + ": " + *error;
    return 0;
  }
  uint64_t total = bytes.size();
  if (kind == OutputPngFolder) {
    total = 0;
    for (const auto& picture : pictures) total += picture.size();
    ok = WriteFrameFolder(path, pictures, error);
  } else {
    ok = WriteOutputBytes(path, bytes.data(), bytes.size(), 0, error);
  }
  if (ok && written) *written = total;
  return ok;
}

int WritePictureOutput(const uint8_t* rgba, int32_t width, int32_t height, const std::string& path,
                       std::string* error) {
  if (OutputKindFor(path, std::string()) != OutputPng && path != "-") {
    *error = "unknown output type: " + path + " (a picture is written as .png)";
    return 0;
  }
  std::vector<uint8_t> bytes;
  if (!EncodePng(rgba, width, height, &bytes, error)) {
    *error = "cannot write " + path + ": " + *error;
    return 0;
  }
  return WriteOutputBytes(path, bytes.data(), bytes.size(), 0, error);
}
