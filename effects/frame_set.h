// Frame sets: the shape of the effects whose text stands still while its letters show a looping
// animated picture (Snow, Stars, Machine, Quark, Neural Network, Arrows, Wavelet, Omni, Diagonal
// Fuse, Confetti, Candy). The whole animation is drawn once, as a set of fill images at the
// canvas size, the first time a frame is rendered; every frame is then the common frame renderer
// with that frame's image as its fill, at full level, and the text and shadow at their place of
// rest.
//
// A frame-set effect supplies a FrameSetEffect: its page ids for the common steps (with 0 for the
// Fill material and Fill opacity, which a frame-set page does not have), its Frames control, the
// size of its private state and three procedures:
//   prepare(state, dialog, width, height): fills the zeroed state from the page, draws what all
//     frames share; every random number of the animation is drawn here. 1, or 0 on failure.
//     `release` is called on the state whatever prepare returned, so prepare may fail part way.
//   frame(state, frameNumber): a new 24-bit picture of width by height, frame `frameNumber` of
//     the loop, or null. Called for 0, 1, ... in order, so it may advance the state.
//   release(state): frees what the state holds (not the state itself). Safe on a zeroed state.
// Its table row then has three one-line procedures, for example
//   int SnowEffectBuild(BuildContext* c) { return FrameSetEffectBuild(c, &kSnowFrameSet); }
// and likewise FrameSetEffectPreview; its key colour is PageBackgroundKeyColour with its Background
// id.
//
// Frame loop: with the animate check on, Frames frames are built, each with the Delay, and
// progress is reported after each; with it off one frame, the first of the loop. The preview is
// frame 0 of a set of one slot, so the sample always equals the build's first frame. On every
// way out the set is freed; frames already appended stay in the list.
#pragma once

#include <cstdint>

#include "effects/frame_renderer.h"
#include "materials/fill_cache.h"
#include "platform/dialog.h"
#include "platform/memory.h"
#include "shell/effect_table.h"

// The frame parameters of a frame-set effect: a local of its build or preview procedure, cleared
// before use, whose address is BuildContext.params.
struct FrameParams {
  MovableHandle frames;  // MovableHandle[frameCount], zero-filled, made by the frame builder
  int32_t frameCount;    // slots: the number of frames to pre-render
  int32_t frameIndex;    // the frame the renderer is to produce now
  int32_t framesBuilt;   // slots filled
  FillCache* fills;      // the build's texture fills, owned by the frame loop; null in a sample
};

typedef int (*FrameSetPrepare)(void* state, WindowHandle dialog, int32_t width, int32_t height);
typedef MovableHandle (*FrameSetFrame)(void* state, int32_t frameNumber);
typedef void (*FrameSetRelease)(void* state);

struct FrameSetEffect {
  FramePageIds ids;  // the common steps' controls; `fill` and `fillOpacity` are 0
  int32_t framesId;  // the page's Frames control
  uint32_t stateSize;
  FrameSetPrepare prepare;
  FrameSetFrame frame;
  FrameSetRelease release;
  // 0: the text shadow is painted from the page's Shadow material. Else the id of a colour button
  // (with `ids.shadow` 0) whose colour paints it.
  int32_t shadowColourId;
};

// The frame builder: allocates `frameCount` slots, prepares the state and stores frames 0 to
// frameCount - 1 in order. Returns 1, or 0 with the set freed and the state released.
int BuildFrameSet(FrameParams* params, const FrameSetEffect* effect, WindowHandle dialog,
                  int32_t width, int32_t height);
// Frees every image of the set and the slots; leaves `frames` null and the counts of built
// frames 0. Safe on a cleared or already freed set.
void FreeFrameSet(FrameParams* params);
// The material step's fill of a frame set: builds the set if it is still empty, then a copy of
// image `frameIndex`. Null when the build fails or `frameIndex` is not below `frameCount`.
MovableHandle FrameSetFillImage(FrameParams* params, const FrameSetEffect* effect,
                                WindowHandle dialog, int32_t width, int32_t height);

// A fill picture of width by height for the frame being rendered, or null.
typedef MovableHandle (*FrameFillSource)(void* source, BuildContext* context, int32_t width,
                                         int32_t height);
// The frame-set renderer's steps with the fill taken from `fill`: background, the fill, shadow
// material, alpha plane, then shadow, fill (at the page's Fill opacity, 255 without one) and
// outline with no position. A nonzero `shadowColourId` names the colour button that paints the
// shadow instead of a Shadow material. Effects whose fill picture is made for each frame use it
// directly. Background and shadow materials are filled through `fills` (null: made anew).
MovableHandle RenderFrameWithFill(BuildContext* context, const FramePageIds* ids,
                                  int32_t shadowColourId, FrameFillSource fill, void* source,
                                  FillCache* fills = nullptr);
// The renderer of a frame-set effect: the common steps, with no position, the fill taken from the
// set at level 255. Reads context->params as a FrameParams. A new picture, or null.
MovableHandle RenderFrameSetFrame(BuildContext* context, const FrameSetEffect* effect);

// The frame loop, apart from the dialog: what it reads, and a renderer to call per frame.
struct FrameSetLoop {
  int32_t animated;  // 0: one frame
  int32_t delay;     // host units, every frame
  int32_t frames;    // the Frames control: slots and frames when animated
};
typedef MovableHandle (*FrameSetRenderer)(void* renderer, BuildContext* context);

// Sets the build flag and context->params to a cleared FrameParams of its own, with a fill cache
// for the length of the loop, renders and appends the frames with progress, and frees the set.
// Returns 1, or 0 when a render or an append fails.
int RunFrameSetFrames(BuildContext* context, const FrameSetLoop* loop, FrameSetRenderer render,
                      void* renderer);

// The effect table's preview and build for a frame-set effect.
int FrameSetEffectPreview(BuildContext* context, const FrameSetEffect* effect);
int FrameSetEffectBuild(BuildContext* context, const FrameSetEffect* effect);
