// Machine: the text stands still and its letters show a checkerboard of diamonds, each a square
// turned 45 degrees and painted with a conical gradient; neighbouring diamonds turn against each
// other like meshing gears, and the loop closes after one whole turn. A frame-set effect whose
// frame count comes from the Rotation combo. It draws no random numbers.
#pragma once

#include <cstdint>

#include "effects/frame_set.h"
#include "platform/memory.h"
#include "shell/effect_table.h"

struct MachineSettings {
  uint32_t startColor, endColor;
  int32_t inverse;   // the Inverse rotation check
  int32_t offset;    // degrees
  int32_t rotation;  // signed degrees per frame, never 0
  int32_t size;      // side of one square
};

// Private to the frame builder.
struct MachineState {
  int32_t width, height;  // canvas
  int32_t tileWidth, tileHeight;
  int32_t size;
  int32_t framesPerTurn;
  int32_t frameNumber;
  int32_t rotation;
  int32_t offset;
  int32_t direction;  // +1, or -1 with Inverse rotation
  uint32_t startColor, endColor;
  MovableHandle masks[4];  // the corner triangles, white in the corner named by the index
};

int PrepareMachineState(MachineState* state, const MachineSettings* settings, int32_t width,
                        int32_t height);
void ReleaseMachineState(MachineState* state);
// One tile of frame `frameNumber`: the diamond of A with B's quarters in its corners. Null on
// failure.
MovableHandle RenderMachineTile(MachineState* state, int32_t frameNumber);
// A `size` by `size` 24-bit picture turned by 45 degrees into a new width by height one, by
// bilinear interpolation; grey outside the source. Null on failure.
MovableHandle TurnByFortyFive(MovableHandle source, int32_t width, int32_t height);

void ReadMachineSettings(WindowHandle dialog, MachineSettings* settings);

extern const FrameSetEffect kMachineFrameSet;

int MachineEffectPreview(BuildContext* context);
int MachineEffectBuild(BuildContext* context);
int32_t MachineEffectKeyColour(WindowHandle dialog, int32_t mode);
