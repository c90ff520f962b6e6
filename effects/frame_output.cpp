// Appending built frames and reporting progress, shared by the effects' frame loops.
#include "effects/frame_output.h"

#include "shell/host_interface.h"

int AppendEffectFrame(BuildContext* context, MovableHandle image, int32_t delay) {
  FrameRecord record{};
  record.image = image;
  record.delay = delay;
  record.transparentIndex = -1;
  if (AppendFrame(context->frames, &record)) return 1;
  MovableFree(image);
  return 0;
}

void ReportFrameProgress(const BuildContext* context, int32_t step, int32_t total) {
  if (context->host && context->host->service)
    context->host->service(nullptr, HostOpProgress, static_cast<uint64_t>(step),
                           static_cast<uint64_t>(total));
}
