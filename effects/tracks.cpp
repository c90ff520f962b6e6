// Tracks' cutting, frames, bevel and frame loop. Bar edges and targets are in single precision as
// the look requires; each frame a bar rolls its own picture by the rounded distance still owed,
// so that rounding is corrected by what it has moved so far and never accumulates.
#include "effects/tracks.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "controls/value_controls.h"
#include "documents/settings.h"
#include "effects/frame_loop.h"
#include "effects/frame_renderer.h"
#include "effects/key_colour.h"
#include "shell/crt_random.h"
#include "shell/packed_dib.h"
#include "text/compositing.h"
#include "text/image_copy.h"

namespace {

constexpr int32_t kSpeedTable[4] = {1, 2, 4, 8};

bool Horizontal(int32_t mode) {
  return mode >= kTracksFirstHorizontalMode;
}

}  // namespace

void FreeTracks(TracksState* state) {
  for (int32_t i = 0; i < state->trackCount; ++i) {
    MovableFree(state->tracks[i].image);
    state->tracks[i].image = nullptr;
  }
  MovableFree(state->base);
  state->base = nullptr;
}

int CutTracks(TracksState* state, MovableHandle picture, const TracksCutSettings* settings) {
  std::memset(state, 0, sizeof(*state));
  {
    ScopedLock lock(picture);
    if (!lock) return 0;
    const BitmapInfoHeader* h = reinterpret_cast<const BitmapInfoHeader*>(lock.bytes);
    state->width = h->biWidth;
    state->height = h->biHeight;
  }
  state->background = settings->background;
  state->frames = settings->frames;
  state->mode = std::min(settings->mode, 6);
  state->bevel = settings->bevel != 0;
  int32_t count = std::clamp(settings->tracks, 2, kMaxTracks);
  const int32_t speeds = std::clamp(settings->speeds, 1, 4);
  crt::srand(static_cast<uint32_t>(settings->seed));

  const bool horizontal = Horizontal(state->mode);
  const int32_t span = horizontal ? state->height : state->width;
  state->bevelThickness = ((horizontal ? state->width : state->height) * settings->bevelSize) / 100;
  while (count >= 2 && span / count < 4) --count;
  if (count < 2) return 0;
  state->base = DuplicateHandle(picture);
  if (!state->base) return 0;

  float edges[kMaxTracks + 1];
  for (int32_t i = 0; i < count; ++i)
    edges[i] = static_cast<float>(i + 1) / static_cast<float>(count);
  edges[count] = 1.0f;
  int32_t previous = 0;
  for (int32_t i = 0; i < count; ++i) {
    int32_t row = 0;
    if (speeds > 1) {
      // Neighbours get different speeds, unless sixteen draws all repeat the last one.
      for (int32_t tries = 0; tries < 16; ++tries) {
        row = crt::rand() % speeds;
        if (row != previous) break;
      }
    }
    previous = row;
    TrackBar& bar = state->tracks[i];
    bar.speed = kSpeedTable[row];
    if (state->mode == 1 || state->mode == 4) {
      bar.speed = -bar.speed;
    } else if (state->mode == 2 || state->mode == 5) {
      if (crt::rand() % 2 == 0) bar.speed = -bar.speed;
    }
    const int32_t far = static_cast<int32_t>(static_cast<float>(span) * edges[i]);
    const int32_t near = i == 0 ? 0 : static_cast<int32_t>(static_cast<float>(span) * edges[i - 1]);
    bar.position = near;
    bar.mode = state->mode;
    if (horizontal) {
      bar.height = far - near;
      bar.image = CropImage(state->base, 0, near, state->width, bar.height);
    } else {
      bar.width = far - near;
      bar.image = CropImage(state->base, near, 0, bar.width, state->height);
    }
    state->trackCount = i + 1;
    if (!bar.image) {
      FreeTracks(state);
      return 0;
    }
  }
  return 1;
}

MovableHandle BevelTracks(const TracksState* state, MovableHandle frame) {
  MovableHandle result = DuplicateHandle(frame);
  ScopedLock lock(result);
  if (!lock) {
    MovableFree(result);
    return nullptr;
  }
  const BitmapInfoHeader* h = reinterpret_cast<const BitmapInfoHeader*>(lock.bytes);
  const int32_t width = h->biWidth, height = h->biHeight;
  const bool alpha = h->biBitCount == 32;
  const bool horizontal = Horizontal(state->mode);
  const int32_t t = state->bevelThickness;
  const int32_t length = horizontal ? height : width;  // of each faded line
  const int32_t across = horizontal ? width : height;
  for (int32_t i = 0; i < t && i < across; ++i) {
    const uint32_t w = static_cast<uint32_t>((i * 255) / t);
    for (int32_t line : {i, across - 1 - i}) {
      for (int32_t j = 0; j < length; ++j) {
        const int32_t x = horizontal ? line : j, y = horizontal ? j : line;
        const uint32_t pixel = ReadDibPixel(lock.bytes, x, y);
        const uint32_t faded =
            alpha ? (pixel & 0xFFFFFF) | ((((pixel >> 24) * static_cast<uint32_t>(i)) / t) << 24)
                  : BlendPixel(state->background, pixel, w) & 0xFFFFFF;
        WriteDibPixel(lock.bytes, x, y, faded);
      }
    }
  }
  return result;
}

MovableHandle NextTracksFrame(TracksState* state) {
  ScopedBlock frame(DuplicateHandle(state->base));
  if (!frame.handle) return nullptr;
  const bool horizontal = Horizontal(state->mode);
  const int32_t length = horizontal ? state->width : state->height;
  const int32_t i = state->frameIndex;
  int ok = 1;
  for (int32_t k = 0; k < state->trackCount && ok; ++k) {
    TrackBar& bar = state->tracks[k];
    if (bar.counter < 0 || bar.counter >= state->frames) continue;
    const float target = (static_cast<float>(length) / static_cast<float>(state->frames)) *
                         static_cast<float>(bar.speed) * static_cast<float>(i);
    const int32_t delta =
        static_cast<int32_t>(static_cast<double>(target) - static_cast<double>(bar.moved) + 0.5);
    bar.moved += static_cast<float>(delta);
    // A fast bar on few frames can owe more than a whole turn: the turns change nothing.
    const int32_t distance = length > 0 ? std::abs(delta) % length : 0;
    if (distance) {
      MovableHandle rolled = horizontal ? (delta < 0 ? RollRight : RollLeft)(bar.image, distance)
                                        : (delta < 0 ? RollDown : RollUp)(bar.image, distance);
      if (!rolled) {
        ok = 0;
        break;
      }
      MovableFree(bar.image);
      bar.image = rolled;
    }
    if (horizontal)
      CopyImageRect(frame.handle, 0, bar.position, bar.image, 0, 0, state->width, bar.height);
    else
      CopyImageRect(frame.handle, bar.position, 0, bar.image, 0, 0, bar.width, state->height);
  }
  for (int32_t k = 0; k < state->trackCount; ++k) ++state->tracks[k].counter;
  if (!ok) return nullptr;
  if (state->bevel) {
    if (MovableHandle bevelled = BevelTracks(state, frame.handle)) return bevelled;
  }
  return frame.Release();
}

int RunTracksFrames(BuildContext* context, const TracksLoopSettings* loop,
                    const TracksCutSettings* cut, TracksRenderer render, void* renderer) {
  context->flags |= kBuildFlagBuild;
  TracksState state;
  {
    ScopedBlock picture(render(renderer));
    if (!picture.handle || !CutTracks(&state, picture.handle, cut)) return 0;
  }
  const int32_t factor = Horizontal(state.mode) ? loop->slowHFactor : loop->slowVFactor;
  const int32_t threshold = (state.frames * factor) / 100;
  int32_t delay = loop->delay;
  int ok = 1;
  for (int32_t i = 0; i < state.frames && ok; ++i) {
    state.frameIndex = i;
    MovableHandle frame = NextTracksFrame(&state);
    if (loop->slowEnd && i > threshold) delay += loop->delay;
    ok = frame && AppendEffectFrame(context, frame, delay);
    if (ok) ReportFrameProgress(context, i, state.frames);
  }
  // The picture itself ends the run, whole, for the pause; the list takes it over.
  if (ok) {
    MovableHandle base = state.base;
    state.base = nullptr;
    ok = AppendEffectFrame(context, base, loop->pause + loop->delay);
  }
  FreeTracks(&state);
  return ok;
}

MovableHandle MakeTracksSample(const TracksCutSettings* cut, TracksRenderer render,
                               void* renderer) {
  TracksState state;
  {
    ScopedBlock picture(render(renderer));
    if (!picture.handle || !CutTracks(&state, picture.handle, cut)) return nullptr;
  }
  state.frameIndex = 1;
  MovableHandle sample = NextTracksFrame(&state);
  FreeTracks(&state);
  return sample;
}

namespace {

// Page 7415.
constexpr FramePageIds kTracksIds = {729, 731, 733, 735, 737, 739, 743, 745, 747, 749, 750};
constexpr int32_t kIdFrames = 741, kIdMode = 751, kIdTracks = 753, kIdSeed = 755, kIdSlowEnd = 757,
                  kIdSpeeds = 758, kIdBevelSize = 760, kIdBevelEnable = 762;
// The main dialog's.
constexpr int32_t kIdDelay = 11, kIdPause = 23;

MovableHandle RenderTracksPicture(void* context) {
  BuildContext* c = static_cast<BuildContext*>(context);
  FrameSettings settings;
  FrameTexts text;
  if (!ReadFrameSettings(c->dialog, &kTracksIds, c->sample, &settings, &text)) return nullptr;
  MovableHandle image = RenderStandardFrame(c->dialog, &settings, 0, 0);
  ReleaseFrameSettings(c->dialog, &kTracksIds);
  return image;
}

int32_t SettingOr(const char* key, int32_t fallback) {
  const int32_t* value = SettingInteger(key);
  return value ? *value : fallback;
}

void ReadCut(WindowHandle dialog, TracksCutSettings* cut) {
  int translated;
  cut->background = GetDialogItemInt(dialog, kTracksIds.background, &translated, 0);
  cut->seed = ReadDlgValue(dialog, kIdSeed);
  cut->mode = DialogGetSelection(DialogItem(dialog, kIdMode));
  // The Tracks box counts by the number its row shows, not by the row.
  char count[16];
  DialogGetText(DialogItem(dialog, kIdTracks), count, sizeof count);
  cut->tracks = std::atoi(count);
  cut->speeds = ReadDlgValue(dialog, kIdSpeeds);
  cut->frames = ReadDlgValue(dialog, kIdFrames);
  cut->bevel = DialogGetCheck(DialogItem(dialog, kIdBevelEnable));
  cut->bevelSize = ReadDlgValue(dialog, kIdBevelSize);
}

}  // namespace

int TracksEffectPreview(BuildContext* context) {
  context->flags |= kBuildFlagPreview;
  TracksCutSettings cut;
  ReadCut(context->dialog, &cut);
  context->image = MakeTracksSample(&cut, RenderTracksPicture, context);
  return 1;
}

int TracksEffectBuild(BuildContext* context) {
  WindowHandle dialog = context->dialog;
  TracksLoopSettings loop;
  loop.delay = ReadDlgValue(dialog, kIdDelay);
  loop.pause = ReadDlgValue(dialog, kIdPause);
  loop.slowEnd = DialogGetCheck(DialogItem(dialog, kIdSlowEnd));
  loop.slowVFactor = SettingOr("Style015SlowVFactor", 98);
  loop.slowHFactor = SettingOr("Style015SlowHFactor", 95);
  TracksCutSettings cut;
  ReadCut(dialog, &cut);
  if (RunTracksFrames(context, &loop, &cut, RenderTracksPicture, context)) return 1;
  MovableFree(context->image);
  context->image = nullptr;
  return 0;
}

int32_t TracksEffectKeyColour(WindowHandle dialog, int32_t mode) {
  return PageBackgroundKeyColour(dialog, mode, kTracksIds.background);
}
