#include "tests/support/frame_set_scenes.h"

#include <algorithm>

#include "effects/arrows.h"
#include "effects/candy.h"
#include "effects/confetti.h"
#include "effects/diagonal_fuse.h"
#include "effects/machine.h"
#include "effects/neural_network.h"
#include "effects/quark.h"
#include "effects/stars.h"
#include "effects/wavelet.h"
#include "materials/material.h"

const FrameSetScene kFrameSetScenes[kFrameSetSceneCount] = {
    // The gradients are arithmetic alone and agree exactly. The balls' ellipses are drawn by each
    // platform's rasteriser (anti-aliased natively, not by GDI), so most ball pixels differ a
    // little: measured 1427 of 1936 pixels, mean 2.21, and 1869 of 2400, mean 3.14.
    {"machine", 0, 0.0},
    {"quark", 0, 0.0},
    {"neural-network", 1570, 3.0},
    {"wavelet", 2060, 4.0},
    // Arrows and leaves are polygons drawn large and resampled down, and agree exactly. Stars'
    // polygons and the discs of Confetti and Candy go through each platform's rasteriser: measured
    // 208 pixels, mean 2.02; 1065, mean 2.23; 1322, mean 1.70 (the blur spreads the disc edges).
    {"arrows", 0, 0.0},
    {"stars", 240, 2.5},
    {"confetti", 1200, 2.7},
    {"candy", 1500, 2.2},
    {"diagonal-fuse", 0, 0.0}};

namespace {

const uint32_t kItemColours[5] = {0xFF0000, 0x00FF00, 0x00CCFF, 0x0033CC, 0xFFCC00};

// Frame `frame` of an item effect's loop on a solid fill, from its prepared state.
template <typename State, typename Settings>
MovableHandle RenderItemFrame(int (*prepare)(State*, const Settings*, int32_t, int32_t, Material*),
                              void (*release)(State*), MovableHandle (*render)(State*, int32_t),
                              const Settings& settings, int32_t frame) {
  Material fill;
  InitMaterial(&fill);
  fill.solidColour = 0x402010;
  State state;
  MovableHandle image = nullptr;
  if (prepare(&state, &settings, 90, 60, &fill)) image = render(&state, frame);
  release(&state);
  return image;
}

}  // namespace

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
    // The item effects: every colour, shadows offset and softened, sway, and items larger than a
    // tenth of the canvas so that some wrap across its edges.
    case 4: {
      ArrowsSettings s = {{}, {0, 1, 1, 1, 1}, {1, 1, 1, 1}, 160, 3, 4, 9031, 230, 20, 14, 18, 8};
      std::copy(kItemColours, kItemColours + 5, s.colors);
      image = RenderItemFrame(PrepareArrowsState, ReleaseArrowsState, RenderArrowsFrame, s, 3);
      break;
    }
    case 5: {
      StarsSettings s = {{}, {0, 1, 1, 1, 1}, 1, 160, 3, 4, 9031, 230, 20, 14, 18, 8};
      std::copy(kItemColours, kItemColours + 5, s.colors);
      image = RenderItemFrame(PrepareStarsState, ReleaseStarsState, RenderStarsFrame, s, 3);
      break;
    }
    case 6: {
      ConfettiSettings s = {{}, {0, 1, 1, 1, 1}, 0x202040, 160, 3, 4, 9031, 230, 20, 14, 14, 8};
      std::copy(kItemColours, kItemColours + 5, s.colors);
      image = RenderItemFrame(PrepareConfettiState, ReleaseConfettiState, RenderConfettiFrame, s, 3);
      break;
    }
    case 7: {
      CandySettings s = {{}, {0, 1, 1, 1, 1}, 0x202040, 160, 3, 4, 6, 9031, 230, kCandyRight, 20, 14,
                         14, 8};
      std::copy(kItemColours, kItemColours + 5, s.colors);
      image = RenderItemFrame(PrepareCandyState, ReleaseCandyState, RenderCandyFrame, s, 3);
      break;
    }
    case 8: {
      // Leaves part-grown, leaning the second way, on a canvas not a multiple of the leaf size.
      const FuseLeaves leaves = {86, 50, 6, 14, 1, 0xFFCC00, 0x203080, 0.6f};
      image = MakeFuseFill(&leaves);
      break;
    }
    default:
      break;
  }
  return image;
}
