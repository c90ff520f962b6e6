// The host that gm5 is to the engine: a HostRecord whose service is served by a host session in
// this process, acting as an indexed host or a true-colour one, and showing the pipeline's captions
// and steps on a progress bar. Either way a frame's delay counts hundredths of a second, as the
// settings hold it. A file that the output could not hold, or whose frames could not fit in
// memory, is refused when the engine creates it, before any frame is drawn.
// One host is active at a time: HostService carries no context of its own.
#pragma once

#include <cstdint>
#include <string>

#include "cli/progress.h"
#include "host/host_session.h"
#include "shell/host_interface.h"

struct InProcessHost {
  HostRecord record{};
  HostSession session;
  ProgressBar* progress = nullptr;  // not owned; may be null
  int32_t trueColour = 0;
  int32_t largestSide = 65535;  // the widest and tallest picture the output can hold
  uint64_t memoryLimit = 0;     // bytes the frames may take; 0: the machine's memory
  std::string refusal;          // why a file was refused, or empty
};

// The bytes that `frameCount` frames of `width` by `height` at `bits` per pixel take held in
// memory, with the output's full-size RGBA canvas.
uint64_t EstimateFrameBytes(int32_t width, int32_t height, int32_t bits, int32_t frameCount);

// Nonzero, with `host->refusal` saying why, when `frameCount` frames of `width` by `height` at
// `bits` per pixel are more than the output holds (`largestSide`) or memory can keep.
int RefuseCanvas(InProcessHost* host, int32_t width, int32_t height, int32_t bits,
                 int32_t frameCount);

// Makes `host` the active one, indexed unless `trueColour`. `progress` may be null.
void BeginInProcessHost(InProcessHost* host, int32_t trueColour, ProgressBar* progress);
// Stops serving calls: the record's service refuses everything from now on.
void EndInProcessHost(InProcessHost* host);
// The file the engine handed over and committed last (test files aside), or null.
const HostFile* InProcessResult(const InProcessHost* host);
