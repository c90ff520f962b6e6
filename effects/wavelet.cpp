// Wavelet's cells, balls and waves. The seed decides only the colours; the calls are the colour
// picks, cell by cell, rows outside.
#include "effects/wavelet.h"

#include <cmath>
#include <cstring>

#include "controls/value_controls.h"
#include "effects/colour_hsv.h"
#include "effects/glossy_ball.h"
#include "effects/item_choice.h"
#include "effects/key_colour.h"
#include "materials/material_button.h"
#include "shell/crt_random.h"
#include "shell/packed_dib.h"
#include "text/text_mask.h"

namespace {

// Page 7409.
constexpr int32_t kIdShadow = 500, kIdBackground = 502, kIdOutline = 504, kIdShadowOpacity = 508,
                  kIdFrames = 510, kIdSoftness = 512, kIdShadowOffset = 514,
                  kIdShadowDirection = 516, kIdShadowEnable = 518, kIdOutlineEnable = 519,
                  kIdGlare = 524, kIdSize = 526, kIdSeed = 528, kIdColor1 = 530, kIdEnable2 = 540,
                  kIdShade = 544, kIdAmplitude = 546, kIdScroll = 548, kIdWavelength = 550;

constexpr double kPi = 3.14159265358979323846;

}  // namespace

int32_t WaveletWaves(int32_t selection) {
  static const int32_t kWaves[4] = {1, 2, 4, 8};
  if (selection < 0) return 1;
  return selection >= 4 ? 8 : kWaves[selection];
}

int PrepareWaveletState(WaveletState* state, const WaveletSettings* settings, int32_t width,
                        int32_t height) {
  std::memset(state, 0, sizeof(*state));
  if (width < 1 || height < 1 || settings->size < 1 || settings->frames < 1) return 0;
  crt::srand(static_cast<uint32_t>(settings->seed));
  state->waves = WaveletWaves(settings->wavelength);
  state->width = width;
  state->height = height;
  state->cellSize = settings->size;
  state->columns = (width + settings->size - 1) / settings->size;
  state->rows = (height + settings->size - 1) / settings->size;
  state->frames = settings->frames;
  state->shade = settings->shade;
  state->reverse = settings->scroll != 0;
  state->background = settings->background;
  state->colorCount = settings->colorCount;
  std::memcpy(state->colors, settings->colors, sizeof(state->colors));
  state->glare = settings->glare;
  state->amplitude = static_cast<float>(settings->amplitude / 100.0);
  state->cellCount = state->columns * state->rows;
  state->cellBlock = MovableAlloc(static_cast<size_t>(state->cellCount) * sizeof(WaveletCell));
  state->cells = static_cast<WaveletCell*>(MovableLock(state->cellBlock));
  if (!state->cells) return 0;
  std::memset(state->cells, 0, static_cast<size_t>(state->cellCount) * sizeof(WaveletCell));
  const double shading = state->shade / 100.0;
  int32_t last = -1;
  for (int32_t row = 0; row < state->rows; ++row)
    for (int32_t column = 0; column < state->columns; ++column) {
      WaveletCell& cell = state->cells[row * state->columns + column];
      cell.x = column * state->cellSize;
      cell.y = row * state->cellSize;
      cell.size = state->cellSize;
      cell.level = 255;
      cell.alpha = 255;
      cell.color = state->colors[DrawItemIndex(state->colorCount, &last)];
      // The highlight (value raised by the shading) is not drawn; the rim has it lowered.
      const HsvColour hsv = RgbToHsv(cell.color);
      BallPaint paint;
      paint.body = paint.background = cell.color;
      paint.rim = HsvToRgb(hsv.hue, hsv.saturation, hsv.value - shading);
      paint.glare = state->glare;
      cell.image = DrawGlossyBall(cell.size, cell.size, 4, &paint);
      if (!cell.image) return 0;
    }
  return 1;
}

void ReleaseWaveletState(WaveletState* state) {
  for (int32_t i = 0; state->cells && i < state->cellCount; ++i) MovableFree(state->cells[i].image);
  if (state->cells) MovableUnlock(state->cellBlock);
  MovableFree(state->cellBlock);
  std::memset(state, 0, sizeof(*state));
}

int32_t WaveletLevel(const WaveletState* state, int32_t column, int32_t frameNumber) {
  const int32_t p = state->reverse ? state->frames - frameNumber - 1 : frameNumber;
  const int32_t base = 255 - static_cast<int32_t>(state->amplitude * 255.0);
  const float angle = static_cast<float>(state->waves) * 360.0f *
                          (static_cast<float>(column) / static_cast<float>(state->columns)) +
                      (static_cast<float>(p) / static_cast<float>(state->frames)) * 360.0f;
  const double wave = std::sin(angle * kPi / 180.0);
  return base - static_cast<int32_t>((wave * state->amplitude + 1.0) * -0.5 * 255.0);
}

MovableHandle RenderWaveletFrame(WaveletState* state, int32_t frameNumber) {
  state->frameNumber = frameNumber;
  ScopedBlock frame(FilledImage(0, 0, state->width, state->height, state->background));
  ScopedLock target(frame.handle);
  if (!target) return nullptr;
  for (int32_t row = 0; row < state->rows; ++row)
    for (int32_t column = 0; column < state->columns; ++column) {
      WaveletCell& cell = state->cells[row * state->columns + column];
      cell.level = WaveletLevel(state, column, frameNumber);
      ScopedLock ball(cell.image);
      if (ball) StampBallWrapped(target.bytes, ball.bytes, cell.x, cell.y, cell.level);
    }
  return frame.Release();
}

void ReadWaveletSettings(WindowHandle dialog, WaveletSettings* settings) {
  std::memset(settings, 0, sizeof(*settings));
  int translated;
  settings->background = ButtonSolidColour(DialogItem(dialog, kIdBackground), 0xFFFFFF);
  settings->colorCount = ReadItemColours(dialog, kIdColor1, kIdEnable2, settings->colors);
  settings->wavelength = DialogGetSelection(DialogItem(dialog, kIdWavelength));
  settings->scroll = static_cast<int32_t>(GetDialogItemInt(dialog, kIdScroll, &translated, 0));
  settings->seed = ReadDlgValue(dialog, kIdSeed);
  settings->amplitude = ReadDlgValue(dialog, kIdAmplitude);
  settings->frames = ReadDlgValue(dialog, kIdFrames);
  settings->shade = ReadDlgValue(dialog, kIdShade);
  settings->glare = ReadDlgValue(dialog, kIdGlare);
  settings->size = ReadDlgValue(dialog, kIdSize);
}

namespace {

int PrepareWavelet(void* state, WindowHandle dialog, int32_t width, int32_t height) {
  WaveletSettings settings;
  ReadWaveletSettings(dialog, &settings);
  return PrepareWaveletState(static_cast<WaveletState*>(state), &settings, width, height);
}

MovableHandle WaveletFrame(void* state, int32_t frameNumber) {
  return RenderWaveletFrame(static_cast<WaveletState*>(state), frameNumber);
}

void ReleaseWavelet(void* state) {
  ReleaseWaveletState(static_cast<WaveletState*>(state));
}

}  // namespace

const FrameSetEffect kWaveletFrameSet = {
    {0, kIdShadow, kIdBackground, kIdOutline, 0, kIdShadowOpacity, kIdSoftness, kIdShadowOffset,
     kIdShadowDirection, kIdShadowEnable, kIdOutlineEnable},
    kIdFrames,
    sizeof(WaveletState),
    PrepareWavelet,
    WaveletFrame,
    ReleaseWavelet,
};

int WaveletEffectPreview(BuildContext* context) {
  return FrameSetEffectPreview(context, &kWaveletFrameSet);
}

int WaveletEffectBuild(BuildContext* context) {
  return FrameSetEffectBuild(context, &kWaveletFrameSet);
}

int32_t WaveletEffectKeyColour(WindowHandle dialog, int32_t mode) {
  return PageBackgroundKeyColour(dialog, mode, kIdBackground);
}
