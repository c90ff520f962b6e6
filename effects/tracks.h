// Tracks: the finished picture of the text cut into parallel bars, each sliding along its own
// length at its own speed and wrapping round, until the last frame shows the picture at home. The
// picture is rendered once per build; the bars' speeds and directions come from the Seed. Upright
// bars (modes 0 to 2) are columns of the picture sliding up or down, horizontal ones (modes 3 to
// 5) rows sliding left or right. Pictures are Packed DIB handles; the state owns its bars' images
// and `base` until FreeTracks.
#pragma once

#include <cstdint>

#include "platform/memory.h"
#include "shell/effect_table.h"

constexpr int32_t kMaxTracks = 256;

// Mode rows: slide up, down, up and down, left, right, left and right; above 5 counts as 6, a
// horizontal mode that keeps its speeds' signs.
constexpr int32_t kTracksFirstHorizontalMode = 3;

struct TrackBar {
  int32_t position;       // first column (upright) or row (horizontal)
  int32_t width, height;  // only the one across the bar is set
  int32_t counter;        // frames seen
  int32_t speed;          // a row of the speed table, negative for down or right
  int32_t mode;
  float moved;          // distance rolled so far
  MovableHandle image;  // the bar's own picture, rolled frame by frame
};

struct TracksState {
  int32_t width, height;  // of the picture
  int32_t frameIndex;
  int32_t frames;
  int32_t mode;
  int32_t trackCount;
  TrackBar tracks[kMaxTracks];
  MovableHandle base;  // a copy of the rendered picture
  bool bevel;
  int32_t bevelThickness;  // pixels
  uint32_t background;
};

// What cutting reads from the page.
struct TracksCutSettings {
  uint32_t background;
  int32_t seed;
  int32_t mode;    // the Mode box's row
  int32_t tracks;  // the number in the Tracks box's row
  int32_t speeds;  // how many rows of the speed table are drawn from
  int32_t frames;
  int32_t bevel;      // Bevel edges
  int32_t bevelSize;  // percent of the picture along the bars
};

// Seeds the generator, cuts `picture` into bars (fewer when a bar would be under 4 pixels across)
// and draws their speeds; `picture` stays the caller's. Returns 1, or 0 with nothing held when
// memory fails or fewer than 2 bars fit.
int CutTracks(TracksState* state, MovableHandle picture, const TracksCutSettings* settings);
// The frame state->frameIndex: `base` with every bar rolled on to its place, bevelled when the
// bevel is on (plain when the bevel fails). A new picture, or null when memory fails.
MovableHandle NextTracksFrame(TracksState* state);
// A copy of `frame` whose lines nearest the two ends of the bars' travel fade to the background,
// or, in 32-bit pictures, to transparency. Null when memory fails.
MovableHandle BevelTracks(const TracksState* state, MovableHandle frame);
// Frees the bars' images and `base`.
void FreeTracks(TracksState* state);

// What the frame loop reads besides the cut (which holds Frames).
struct TracksLoopSettings {
  int32_t delay, pause;              // host units
  int32_t slowEnd;                   // each frame past the threshold lasts one Delay longer
  int32_t slowVFactor, slowHFactor;  // thresholds, percent of Frames, for upright and horizontal
};

// Renders the picture; a new picture or null.
typedef MovableHandle (*TracksRenderer)(void* renderer);

// The build: render once, cut, the frames in order with progress after each, then the picture
// itself with Pause + Delay. Returns 1, or 0 when the render, the cut, a frame or an append fails
// (frames appended so far stay in the list).
int RunTracksFrames(BuildContext* context, const TracksLoopSettings* loop,
                    const TracksCutSettings* cut, TracksRenderer render, void* renderer);
// The sample: the bars one step on (frame 1). Null when any step fails.
MovableHandle MakeTracksSample(const TracksCutSettings* cut, TracksRenderer render, void* renderer);

// The effect table's procedures.
int TracksEffectPreview(BuildContext* context);
int TracksEffectBuild(BuildContext* context);
int32_t TracksEffectKeyColour(WindowHandle dialog, int32_t mode);
