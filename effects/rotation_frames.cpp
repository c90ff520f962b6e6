#include "effects/rotation_frames.h"

#include "controls/value_controls.h"

namespace {

// The main dialog's.
constexpr int32_t kIdDelay = 11, kIdAnimated = 22;

MovableHandle RenderTurningFrame(void* effect, BuildContext* context) {
  return RenderFrameSetFrame(context, static_cast<const FrameSetEffect*>(effect));
}

}  // namespace

int32_t ReadRotation(WindowHandle dialog, int32_t id) {
  int translated;
  const int32_t rotation = static_cast<int32_t>(GetDialogItemInt(dialog, id, &translated, 1));
  return rotation == 0 ? 10 : rotation;
}

int32_t RotationFrameCount(int32_t rotation) {
  return 360 / (rotation < 0 ? -rotation : rotation);
}

int RunRotationFrames(BuildContext* context, int32_t rotationId, FrameSetRenderer render,
                      void* renderer) {
  WindowHandle dialog = context->dialog;
  FrameSetLoop loop;
  loop.animated = DialogGetCheck(DialogItem(dialog, kIdAnimated));
  loop.delay = ReadDlgValue(dialog, kIdDelay);
  loop.frames = RotationFrameCount(ReadRotation(dialog, rotationId));
  if (RunFrameSetFrames(context, &loop, render, renderer)) return 1;
  MovableFree(context->image);
  context->image = nullptr;
  return 0;
}

int RotationFrameSetBuild(BuildContext* context, const FrameSetEffect* effect,
                          int32_t rotationId) {
  return RunRotationFrames(context, rotationId, RenderTurningFrame,
                           const_cast<FrameSetEffect*>(effect));
}
