// The reference host's reading of a file named in an animation request: any bytes in the file
// give composed frames of the canvas size with a delay each, or a refusal, and the block made of
// them passes the picker's check.
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "controls/animation_picker.h"
#include "host/animation_reader.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const std::string path = "/tmp/gm5_fuzz_host_reader_" + std::to_string(getpid());
  std::FILE* file = std::fopen(path.c_str(), "wb");
  if (!file) return 0;
  std::fwrite(data, 1, size, file);
  std::fclose(file);
  ComposedAnimation animation;
  const int read = ReadHostAnimationFile(path.c_str(), &animation);
  std::remove(path.c_str());
  if (!read) return 0;
  const size_t frameBytes = static_cast<size_t>(animation.width) * animation.height * 3;
  if (animation.frames.empty() || animation.frames.size() != animation.delays.size()) abort();
  for (const std::vector<uint8_t>& frame : animation.frames)
    if (frame.size() != frameBytes) abort();
  MovableHandle block = MakeAnimationBlockOf(animation);
  if (block && !ValidateAnimationBlock(block)) abort();
  MovableFree(block);
  return 0;
}
