#include "tests/support/frame_set_scenes.h"

#include "effects/machine.h"
#include "effects/neural_network.h"
#include "effects/quark.h"
#include "effects/wavelet.h"

const FrameSetScene kFrameSetScenes[kFrameSetSceneCount] = {
    // The gradients are arithmetic alone and agree exactly. The balls' ellipses are drawn by each
    // platform's rasteriser (anti-aliased natively, not by GDI), so most ball pixels differ a
    // little: measured 1455 of 1936 pixels, mean 2.54, and 1912 of 2400, mean 3.58.
    {"machine", 0, 0.0},
    {"quark", 0, 0.0},
    {"neural-network", 1600, 3.5},
    {"wavelet", 2100, 4.5}};

MovableHandle RenderFrameSetScene(int32_t index) {
  MovableHandle image = nullptr;
  switch (index) {
    case 0: {
      const MachineSettings s = {0xFFFFFF, 0x996633, 0, 180, 6, 48};
      MachineState state{};
      if (PrepareMachineState(&state, &s, 66, 66)) image = RenderMachineTile(&state, 3);
      ReleaseMachineState(&state);
      break;
    }
    case 1: {
      QuarkState state{};
      state.width = 80;
      state.height = 50;
      state.centreX = -6;
      state.rotation = 6;
      image = RenderQuarkFrame(&state, 2);
      break;
    }
    case 2: {
      const NeuralSettings s = {
          0xFFFFFF, {0xFF0000, 0x00FF00, 0x00CCFF, 0x0033CC, 0x0066FF}, 5, 12055, 4, 70, 70, 55,
          11};
      NeuralState state{};
      if (PrepareNeuralState(&state, &s, 44, 44)) image = RenderNeuralTile(&state, 5);
      ReleaseNeuralState(&state);
      break;
    }
    case 3: {
      const WaveletSettings s = {
          0xFFFFFF, {0xFF0000, 0x00FF00, 0x00CCFF, 0x0033CC, 0x0066FF}, 5, 2, 1, 12055, 75, 32,
          70, 160, 10};
      WaveletState state{};
      if (PrepareWaveletState(&state, &s, 60, 40)) image = RenderWaveletFrame(&state, 3);
      ReleaseWaveletState(&state);
      break;
    }
    default:
      break;
  }
  return image;
}
