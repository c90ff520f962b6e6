// Neural Network's cells, trail and frames. The seed decides the colours and the trail's order,
// so the order of the generator's calls in PrepareNeuralState is part of the look.
#include "effects/neural_network.h"

#include <cstring>

#include "controls/value_controls.h"
#include "effects/cell_tiling.h"
#include "effects/colour_hsv.h"
#include "effects/glossy_ball.h"
#include "effects/item_choice.h"
#include "effects/key_colour.h"
#include "materials/material_button.h"
#include "shell/crt_random.h"
#include "text/text_mask.h"

namespace {

// Page 7406.
constexpr int32_t kIdShadow = 355, kIdBackground = 357, kIdOutline = 359, kIdShadowOpacity = 361,
                  kIdSoftness = 363, kIdShadowOffset = 365, kIdShadowDirection = 367,
                  kIdShadowEnable = 369, kIdOutlineEnable = 370, kIdMatrix = 373, kIdGlare = 375,
                  kIdSize = 377, kIdDensity = 379, kIdSeed = 381, kIdColor1 = 383,
                  kIdEnable2 = 393, kIdShade = 397;
// The main dialog's.
constexpr int32_t kIdDelay = 11, kIdAnimated = 22;

uint32_t ShiftValue(uint32_t colour, double change) {
  const HsvColour hsv = RgbToHsv(colour);
  return HsvToRgb(hsv.hue, hsv.saturation, hsv.value + change);
}

}  // namespace

int PrepareNeuralState(NeuralState* state, const NeuralSettings* settings, int32_t width,
                       int32_t height) {
  std::memset(state, 0, sizeof(*state));
  if (width < 1 || height < 1 || settings->matrix < 1 || settings->size < 1) return 0;
  crt::srand(static_cast<uint32_t>(settings->seed));
  state->tileWidth = state->tileHeight = settings->size * settings->matrix;
  state->columns = state->rows = settings->matrix;
  state->width = width;
  state->height = height;
  state->cellCount = settings->matrix * settings->matrix;
  state->cellSize = state->cellStep = settings->size;
  state->shade = settings->shade;
  state->background = settings->background;
  state->colorCount = settings->colorCount;
  std::memcpy(state->colors, settings->colors, sizeof(state->colors));
  state->restLevel = 64;
  state->glare = settings->glare;

  const size_t n = static_cast<size_t>(state->cellCount);
  state->cellBlock = MovableAlloc(n * sizeof(NeuralCell));
  state->orderBlock = MovableAlloc(n * sizeof(int32_t));
  state->cells = static_cast<NeuralCell*>(MovableLock(state->cellBlock));
  state->order = static_cast<int32_t*>(MovableLock(state->orderBlock));
  ScopedBlock outBlock(MovableAlloc(n * sizeof(int32_t)));
  ScopedLock out(outBlock.handle);
  if (!state->cells || !state->order || !out) return 0;
  int32_t last = -1;
  for (int32_t i = 0; i < state->cellCount; ++i) {
    NeuralCell& cell = state->cells[i];
    state->order[i] = i;
    cell.x = i % width;
    cell.y = i / width;
    cell.size = state->cellSize;
    cell.level = state->restLevel;
    cell.alpha = 255;
    cell.color = state->colors[DrawItemIndex(state->colorCount, &last)];
  }
  // Draw without replacement: the drawn entry's place takes the last live entry.
  int32_t* shuffled = reinterpret_cast<int32_t*>(out.bytes);
  for (int32_t k = 0; k < state->cellCount; ++k) {
    const int32_t live = state->cellCount - k;
    const int32_t j = crt::rand() % live;
    shuffled[k] = state->order[j];
    state->order[j] = state->order[live - 1];
  }
  std::memcpy(state->order, shuffled, n * sizeof(int32_t));
  state->trailLength = (settings->density * state->cellCount) / 100;
  if (state->trailLength < 1) state->trailLength = 1;
  state->levelStep = (255 - 64) / state->trailLength;
  if (state->levelStep < 1) state->levelStep = 1;
  return 1;
}

void ReleaseNeuralState(NeuralState* state) {
  if (state->cells) MovableUnlock(state->cellBlock);
  if (state->order) MovableUnlock(state->orderBlock);
  MovableFree(state->cellBlock);
  MovableFree(state->orderBlock);
  std::memset(state, 0, sizeof(*state));
}

MovableHandle RenderNeuralTile(NeuralState* state, int32_t frameNumber) {
  state->frameNumber = frameNumber;
  const int32_t count = state->cellCount;
  if (count < 1 || frameNumber < 0) return nullptr;
  for (int32_t i = 0; i < count; ++i) state->cells[i].level = state->restLevel;
  // The head at order[f]; the tail reaches back through earlier entries, wrapping at the start.
  for (int32_t k = 0, p = frameNumber % count; k < state->trailLength; ++k) {
    state->cells[state->order[p]].level = 255 - k * state->levelStep;
    p = p == 0 ? count - 1 : p - 1;
  }
  ScopedBlock tile(FilledImage(0, 0, state->tileWidth, state->tileHeight, state->background));
  ScopedLock target(tile.handle);
  if (!target) return nullptr;
  const double shade = state->shade / 100.0;
  for (int32_t row = 0; row < state->rows; ++row)
    for (int32_t column = 0; column < state->columns; ++column) {
      const NeuralCell& cell = state->cells[row * state->columns + column];
      BallPaint paint;
      paint.body = ShiftValue(cell.color, cell.level / 255.0 - 1.0);
      paint.rim = ShiftValue(paint.body, (1.0 - shade) - 1.0);
      paint.background = state->background;
      paint.glare = (cell.level * state->glare) / 255;
      // A ball that cannot be drawn leaves its cell in the background.
      ScopedBlock ball(DrawGlossyBall(state->cellSize, state->cellSize, 2, &paint));
      ScopedLock bits(ball.handle);
      if (bits)
        StampBallWrapped(target.bytes, bits.bytes, state->cellStep * column,
                         state->cellStep * row, 255);
    }
  return tile.Release();
}

void ReadNeuralSettings(WindowHandle dialog, NeuralSettings* settings) {
  std::memset(settings, 0, sizeof(*settings));
  settings->background = ButtonSolidColour(DialogItem(dialog, kIdBackground), 0xFFFFFF);
  settings->colorCount = ReadItemColours(dialog, kIdColor1, kIdEnable2, settings->colors);
  settings->seed = ReadDlgValue(dialog, kIdSeed);
  settings->matrix = ReadDlgValue(dialog, kIdMatrix);
  settings->shade = ReadDlgValue(dialog, kIdShade);
  settings->glare = ReadDlgValue(dialog, kIdGlare);
  settings->density = ReadDlgValue(dialog, kIdDensity);
  settings->size = ReadDlgValue(dialog, kIdSize);
}

namespace {

int PrepareNeural(void* state, WindowHandle dialog, int32_t width, int32_t height) {
  NeuralSettings settings;
  ReadNeuralSettings(dialog, &settings);
  return PrepareNeuralState(static_cast<NeuralState*>(state), &settings, width, height);
}

// The tile over the canvas; when tiling fails the tile alone stands for the frame.
MovableHandle NeuralFrame(void* state, int32_t frameNumber) {
  NeuralState* s = static_cast<NeuralState*>(state);
  MovableHandle tile = RenderNeuralTile(s, frameNumber);
  if (!tile) return nullptr;
  MovableHandle tiled = TileCellOverCanvas(tile, s->width, s->height);
  if (!tiled) return tile;
  MovableFree(tile);
  return tiled;
}

void ReleaseNeural(void* state) {
  ReleaseNeuralState(static_cast<NeuralState*>(state));
}

MovableHandle RenderNeuralFrame(void* effect, BuildContext* context) {
  return RenderFrameSetFrame(context, static_cast<const FrameSetEffect*>(effect));
}

}  // namespace

const FrameSetEffect kNeuralFrameSet = {
    {0, kIdShadow, kIdBackground, kIdOutline, 0, kIdShadowOpacity, kIdSoftness, kIdShadowOffset,
     kIdShadowDirection, kIdShadowEnable, kIdOutlineEnable},
    0,
    sizeof(NeuralState),
    PrepareNeural,
    NeuralFrame,
    ReleaseNeural,
};

int NeuralNetworkEffectPreview(BuildContext* context) {
  return FrameSetEffectPreview(context, &kNeuralFrameSet);
}

// The loop has one frame per cell, Matrix squared, which the page gives directly.
int NeuralNetworkEffectBuild(BuildContext* context) {
  WindowHandle dialog = context->dialog;
  FrameSetLoop loop;
  loop.animated = DialogGetCheck(DialogItem(dialog, kIdAnimated));
  loop.delay = ReadDlgValue(dialog, kIdDelay);
  const int32_t matrix = ReadDlgValue(dialog, kIdMatrix);
  loop.frames = matrix * matrix;
  if (RunFrameSetFrames(context, &loop, RenderNeuralFrame,
                        const_cast<FrameSetEffect*>(&kNeuralFrameSet)))
    return 1;
  MovableFree(context->image);
  context->image = nullptr;
  return 0;
}

int32_t NeuralNetworkEffectKeyColour(WindowHandle dialog, int32_t mode) {
  return PageBackgroundKeyColour(dialog, mode, kIdBackground);
}
