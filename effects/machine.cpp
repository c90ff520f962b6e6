// Machine's masks, turned gradients and tiles.
#include "effects/machine.h"

#include <cmath>
#include <cstring>

#include "controls/value_controls.h"
#include "effects/cell_tiling.h"
#include "effects/key_colour.h"
#include "effects/rotation_frames.h"
#include "imaging/resampler.h"
#include "materials/gradient.h"
#include "platform/surface.h"
#include "shell/packed_dib.h"

namespace {

// Page 7404.
constexpr int32_t kIdShadow = 282, kIdBackground = 284, kIdOutline = 286, kIdShadowOpacity = 288,
                  kIdSoftness = 292, kIdShadowOffset = 294, kIdShadowDirection = 296,
                  kIdShadowEnable = 298, kIdOutlineEnable = 299, kIdSize = 300, kIdStart = 302,
                  kIdEnd = 304, kIdRotation = 306, kIdOffset = 308, kIdInverse = 310;

// A quarter-tile mask drawn at four times its size and reduced, which smooths the diagonal.
MovableHandle DrawMask(int32_t index, int32_t quarterWidth, int32_t quarterHeight) {
  const int32_t w = 4 * quarterWidth, h = 4 * quarterHeight;
  const SurfacePoint corners[4][4] = {
      {{0, 0}, {w, 0}, {0, h}, {0, 0}},
      {{0, 0}, {w, h}, {w, 0}, {0, 0}},
      {{0, 0}, {w, h}, {0, h}, {0, 0}},
      {{w, 0}, {w, h}, {0, h}, {w, 0}},
  };
  RenderSurface surface;
  if (!CreateRenderSurface(w, h, &surface)) return nullptr;  // black already
  const SurfacePaint white = {0xFFFFFF, kSurfaceNone, 0};
  SurfacePolygon(&surface, corners[index], 4, &white, kFillAlternate);
  ReleaseRenderSurface(&surface, kSurfaceKeepImage);
  ScopedBlock drawn(surface.handle);
  if (!drawn.handle) return nullptr;
  return ResampleByPercent(drawn.handle, 25, 25);
}

uint32_t Channel(uint32_t colour, int shift) {
  return (colour >> shift) & 0xFF;
}

}  // namespace

MovableHandle TurnByFortyFive(MovableHandle source, int32_t width, int32_t height) {
  ScopedLock in(source);
  if (!in) return nullptr;
  const BitmapInfoHeader* s = reinterpret_cast<const BitmapInfoHeader*>(in.bytes);
  const int32_t size = s->biWidth, sourceHeight = s->biHeight;
  ScopedBlock turned(CreatePackedDib(width, height, nullptr, 24));
  ScopedLock out(turned.handle);
  if (!out) return nullptr;
  const double c = std::cos(3.14159265358979323846 / 4), sn = std::sin(3.14159265358979323846 / 4);
  for (int32_t y = 0; y < height; ++y)
    for (int32_t x = 0; x < width; ++x) {
      const double dx = x - width / 2, dy = y - height / 2;
      const double sx = dx * c - dy * sn + size / 2, sy = dx * sn + dy * c + size / 2;
      const int32_t ix = static_cast<int32_t>(sx), iy = static_cast<int32_t>(sy);
      const double fx = sx - ix, fy = sy - iy;
      uint32_t p00, p10, p01, p11;
      if (ix < 0 || iy < 0 || ix >= size || iy >= sourceHeight) {
        p00 = p10 = p01 = p11 = 0x808080;
      } else if (ix + 1 >= size || iy + 1 >= sourceHeight) {
        p00 = p10 = p01 = p11 = ReadDibPixel(in.bytes, ix, iy);
      } else {
        p00 = ReadDibPixel(in.bytes, ix, iy);
        p10 = ReadDibPixel(in.bytes, ix + 1, iy);
        p01 = ReadDibPixel(in.bytes, ix, iy + 1);
        p11 = ReadDibPixel(in.bytes, ix + 1, iy + 1);
      }
      uint32_t colour = 0;
      for (int shift = 0; shift < 24; shift += 8) {
        const double top = Channel(p00, shift) * (1 - fx) + Channel(p10, shift) * fx;
        const double bottom = Channel(p01, shift) * (1 - fx) + Channel(p11, shift) * fx;
        colour |= (static_cast<uint32_t>(top * (1 - fy) + bottom * fy + 0.5) & 0xFF) << shift;
      }
      WriteDibPixel(out.bytes, x, y, colour);
    }
  return turned.Release();
}

int PrepareMachineState(MachineState* state, const MachineSettings* settings, int32_t width,
                        int32_t height) {
  std::memset(state, 0, sizeof(*state));
  if (width < 1 || height < 1 || settings->rotation == 0 || settings->size < 1) return 0;
  state->width = width;
  state->height = height;
  state->size = settings->size;
  state->tileWidth = state->tileHeight =
      2 * static_cast<int32_t>(std::floor((1 / std::sqrt(2.0)) * settings->size));
  state->rotation = settings->rotation;
  state->framesPerTurn = RotationFrameCount(settings->rotation);
  state->offset = settings->offset;
  state->direction = settings->inverse ? -1 : 1;
  state->startColor = settings->startColor;
  state->endColor = settings->endColor;
  for (int32_t i = 0; i < 4; ++i) {
    state->masks[i] = DrawMask(i, state->tileWidth / 2, state->tileHeight / 2);
    if (!state->masks[i]) return 0;
  }
  return 1;
}

void ReleaseMachineState(MachineState* state) {
  for (MovableHandle& mask : state->masks) MovableFree(mask);
  std::memset(state, 0, sizeof(*state));
}

MovableHandle RenderMachineTile(MachineState* state, int32_t frameNumber) {
  state->frameNumber = frameNumber;
  const int32_t size = state->size, angle = frameNumber * state->rotation;
  ScopedBlock a(MakeRampImage(state->startColor, state->endColor, size, size, 0, 0, angle,
                              kGradientConical));
  ScopedBlock b(MakeRampImage(state->startColor, state->endColor, size, size, 0, 0,
                              (state->offset - angle) * state->direction, kGradientConical));
  if (!a.handle || !b.handle) return nullptr;
  ScopedBlock turnedA(TurnByFortyFive(a.handle, state->tileWidth, state->tileHeight));
  ScopedBlock turnedB(TurnByFortyFive(b.handle, state->tileWidth, state->tileHeight));
  ScopedLock target(turnedA.handle), source(turnedB.handle);
  if (!target || !source) return nullptr;
  const int32_t w = state->tileWidth / 2, h = state->tileHeight / 2;
  // Target corner in A, source corner in B, per mask.
  const int32_t places[4][4] = {{0, 0, w, h}, {w, 0, 0, h}, {0, h, w, 0}, {w, h, 0, 0}};
  for (int32_t i = 0; i < 4; ++i) {
    ScopedLock mask(state->masks[i]);
    if (!mask) return nullptr;
    for (int32_t y = 0; y < h; ++y)
      for (int32_t x = 0; x < w; ++x) {
        const uint32_t m = (ReadDibPixel(mask.bytes, x, y) >> 16) & 0xFF;
        const int32_t tx = places[i][0] + x, ty = places[i][1] + y;
        const uint32_t pa = ReadDibPixel(target.bytes, tx, ty);
        const uint32_t pb = ReadDibPixel(source.bytes, places[i][2] + x, places[i][3] + y);
        uint32_t out = 0;
        for (int shift = 0; shift < 24; shift += 8)
          out |= ((Channel(pa, shift) * (255 - m)) / 255 + (Channel(pb, shift) * m) / 255)
                 << shift;
        WriteDibPixel(target.bytes, tx, ty, out);
      }
  }
  return turnedA.Release();
}

void ReadMachineSettings(WindowHandle dialog, MachineSettings* settings) {
  std::memset(settings, 0, sizeof(*settings));
  int translated;
  settings->startColor = GetDialogItemInt(dialog, kIdStart, &translated, 0);
  settings->endColor = GetDialogItemInt(dialog, kIdEnd, &translated, 0);
  settings->inverse = DialogGetCheck(DialogItem(dialog, kIdInverse));
  settings->offset = ReadDlgValue(dialog, kIdOffset);
  settings->rotation = ReadRotation(dialog, kIdRotation);
  settings->size = ReadDlgValue(dialog, kIdSize);
}

namespace {

int PrepareMachine(void* state, WindowHandle dialog, int32_t width, int32_t height) {
  MachineSettings settings;
  ReadMachineSettings(dialog, &settings);
  return PrepareMachineState(static_cast<MachineState*>(state), &settings, width, height);
}

// The tile over the canvas; when tiling fails the tile alone stands for the frame.
MovableHandle MachineFrame(void* state, int32_t frameNumber) {
  MachineState* s = static_cast<MachineState*>(state);
  MovableHandle tile = RenderMachineTile(s, frameNumber);
  if (!tile) return nullptr;
  MovableHandle tiled = TileCellOverCanvas(tile, s->width, s->height);
  if (!tiled) return tile;
  MovableFree(tile);
  return tiled;
}

void ReleaseMachine(void* state) {
  ReleaseMachineState(static_cast<MachineState*>(state));
}

}  // namespace

const FrameSetEffect kMachineFrameSet = {
    {0, kIdShadow, kIdBackground, kIdOutline, 0, kIdShadowOpacity, kIdSoftness, kIdShadowOffset,
     kIdShadowDirection, kIdShadowEnable, kIdOutlineEnable},
    0,
    sizeof(MachineState),
    PrepareMachine,
    MachineFrame,
    ReleaseMachine,
};

int MachineEffectPreview(BuildContext* context) {
  return FrameSetEffectPreview(context, &kMachineFrameSet);
}

int MachineEffectBuild(BuildContext* context) {
  return RotationFrameSetBuild(context, &kMachineFrameSet, kIdRotation);
}

int32_t MachineEffectKeyColour(WindowHandle dialog, int32_t mode) {
  return PageBackgroundKeyColour(dialog, mode, kIdBackground);
}
