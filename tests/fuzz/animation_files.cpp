// gm5's readers of animated files (GIF, WebP, PNG): any bytes give composed frames of the canvas
// size with a delay each, or a refusal, and the block made of them passes the block check.
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "cli/animation_files.h"
#include "controls/animation_picker.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::vector<uint8_t> bytes(data, data + size);
  ComposedAnimation animation;
  if (!ReadAnimationBytes(bytes.data(), bytes.size(), &animation)) return 0;
  const size_t frameBytes = static_cast<size_t>(animation.width) * animation.height * 3;
  if (animation.frames.empty() || animation.frames.size() != animation.delays.size()) abort();
  for (const std::vector<uint8_t>& frame : animation.frames)
    if (frame.size() != frameBytes) abort();
  MovableHandle block = MakeAnimationBlockOf(animation);
  if (block && !ValidateAnimationBlock(block)) abort();
  MovableFree(block);
  return 0;
}
