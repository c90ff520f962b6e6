// Frames of a host file as a viewer sees them: each frame drawn over what the earlier ones left,
// as full-size RGBA pictures (straight alpha, rows top to bottom). A frame's transparent index
// shows the background when the frame is marked transparent, and otherwise keeps the pixel below
// (the supercompressed frames, which carry only what changed).
#pragma once

#include <cstdint>
#include <vector>

#include "host/host_session.h"

constexpr int32_t kDisposalKeep = 1;   // the next frame is drawn over this one
constexpr int32_t kDisposalClear = 2;  // this frame's area goes back to the background first

struct FrameCanvas {
  int32_t width = 0;
  int32_t height = 0;
  std::vector<uint8_t> rgba;  // width * height * 4
  int32_t previousDisposal = kDisposalKeep;
  int32_t previousWidth = 0, previousHeight = 0;
};

// What happens to a frame's area before the next one is drawn.
int32_t HostFrameDisposal(const HostFrame& frame);

// Sizes the canvas to the file and clears it to transparent black. Returns 0 on a bad size.
int BeginFrameCanvas(FrameCanvas* canvas, const HostFile* file);
// Draws frame `index` of the file onto the canvas, after disposing of the previous one. Frames are
// drawn in order from 0; parts of a frame outside the file's size are left out. Returns 0 when the
// frame's picture is damaged or of a depth that cannot be drawn.
int DrawNextFrame(FrameCanvas* canvas, const HostFile* file, size_t index);
