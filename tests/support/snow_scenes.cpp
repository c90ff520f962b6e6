#include "tests/support/snow_scenes.h"

#include "effects/snow.h"

int RenderSnowScene(std::vector<MovableHandle>* frames) {
  Material fill;
  InitMaterial(&fill);
  fill.solidColour = 0x402010;
  // Sizes of both flake kinds and every colour, with drift, on a canvas smaller than a few flakes.
  const SnowSettings settings = {{0xEAE3DB, 0xDDBC9B, 0xC08243, 0x95632C, 0x7E5429},
                                 {0, 1, 1, 1, 1},
                                 10651,
                                 230,
                                 8,
                                 16,
                                 40,
                                 kSnowSceneFrames};
  SnowState state;
  int ok = PrepareSnowState(&state, &settings, 160, 90, &fill);
  for (int i = 0; ok && i < kSnowSceneFrames; ++i) {
    MovableHandle frame = RenderSnowFrame(&state, i);
    ok = frame != nullptr;
    if (ok) frames->push_back(frame);
  }
  ReleaseSnowState(&state);
  if (ok) return 1;
  for (MovableHandle frame : *frames) MovableFree(frame);
  frames->clear();
  return 0;
}
