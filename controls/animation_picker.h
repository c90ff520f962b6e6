// The animation picker: the control that holds an animated file for Omni. The host reads the file
// into an AnimationBlock (shell/host_interface.h); the picker keeps that block, serves its frames
// as 24-bit pictures with their delays, and falls back on a built-in clip when no file is chosen.
// These procedures are the picker's behaviour on any platform; painting is the window layer's.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/dialog.h"
#include "platform/memory.h"

// The picker's state, a movable block whose handle stands in the control's user data.
struct AnimationPickerState {
  MovableHandle animation;  // the current AnimationBlock, owned by the picker; may be null
  char* path;               // the bound setting: 260 characters and a terminator; empty: the clip
};
static_assert(sizeof(AnimationPickerState) == 16);

constexpr size_t kAnimationPathLimit = 260;
// The frame service's question for the frame count.
constexpr int32_t kAnimationFrameCount = -1;
// Delays of the built-in clip's frames, fast and slow by the host's speed bit.
constexpr int32_t kClipFastDelay = 60, kClipSlowDelay = 600;

extern const char kAnimationOpenFailure[];

// Nonzero when `block` holds a well-formed AnimationBlock (locked and walked within its size).
int ValidateAnimationBlock(MovableHandle block);

// The frame service on a block. With `frame` -1: writes the frame count to `delayOut` and returns
// 1 (as a non-null handle value is not made, the result is then only a success flag). Otherwise a
// new 24-bit Packed DIB of that frame (the last one for numbers beyond it), owned by the caller,
// and its delay through `delayOut`; null when the block or the entry is bad.
MovableHandle AnimationFrame(MovableHandle block, int32_t frame, int32_t* delayOut);
// The frame count of a block: 0 when it holds none or is bad.
int32_t AnimationFrameCount(MovableHandle block);

// A 32-bit strip of square frames, frame 0 on top: the source of the built-in clip.
MovableHandle MakeClipStrip();
// An AnimationBlock of the frames of `strip` (24 or 32 bits), each pixel blended over
// `background` (0x00BBGGRR), with the fast or the slow delay. Null on failure.
MovableHandle MakeClipBlock(MovableHandle strip, uint32_t background, int fast);
// The built-in clip over `background`, at the speed the current host asks for.
MovableHandle MakeBuiltInClip(uint32_t background);

// The control's behaviour. Create makes the state (and on Windows the button); Bind ties it to
// the setting `path` and loads the file or the clip; Load asks the host for the file in `path`
// (when it is not empty and exists) and keeps what it gives, else the built-in clip with `path`
// emptied. A block the host gives that fails validation shows kAnimationOpenFailure and counts as
// none. Each returns 1 when the picker holds a block afterwards.
int AnimationPickerCreate(WindowHandle picker);
int AnimationPickerBind(WindowHandle picker, char* path);
int AnimationPickerLoad(WindowHandle picker);
// The user's choice through the host: the path is emptied first; on a cancel the picture stays.
// The parent is told either way. Returns 1 when a new block was taken.
int AnimationPickerChoose(WindowHandle picker);
// The frame service (message 1225) of the picker's held block.
MovableHandle AnimationPickerFrame(WindowHandle picker, int32_t frame, int32_t* delayOut);
// The held block (null when none) and the bound path (null when not bound).
MovableHandle AnimationPickerBlock(WindowHandle picker);
const char* AnimationPickerPath(WindowHandle picker);
// Document lines: "ANMCTL<id>=<path>"; taking one copies the path and loads it.
size_t AnimationPickerFormatLine(WindowHandle picker, char* line, size_t size);
int AnimationPickerTakeLine(WindowHandle picker, const char* line);
// Frees the block and the state and clears the user data.
void AnimationPickerDestroy(WindowHandle picker);
