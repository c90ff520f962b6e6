// Rattle's frames: the common steps on a canvas grown by twice the reach of the shaking, with the
// fill picture rolled by the frame's displacement before any layer is laid. The text's x takes the
// vertical reach and its y the horizontal one; the two only differ in effect when the reaches do,
// and the animation's look depends on it.
#include "effects/rattle.h"

#include "controls/value_controls.h"
#include "documents/settings.h"
#include "effects/frame_loop.h"
#include "effects/frame_renderer.h"
#include "effects/key_colour.h"
#include "text/image_copy.h"

namespace {

// Page 7418.
constexpr FramePageIds kRattleIds = {884, 886, 888, 890, 892, 894, 898, 900, 902, 904, 905};
constexpr int32_t kIdFrames = 896, kIdSeed = 906, kIdHDisplace = 908, kIdVDisplace = 910,
                  kIdMode = 912;
constexpr int32_t kIdDelay = 11;  // the main dialog's
constexpr int32_t kDefaultRatio = 6;

typedef MovableHandle (*RollProcedure)(MovableHandle image, int32_t distance);

// Replaces `*picture` by its roll, keeping it as it was when the roll fails. A displacement can
// reach past the picture's size; what rolls a whole turn comes back where it was, so only the rest
// is rolled.
void RollPicture(MovableHandle* picture, RollProcedure roll, int32_t distance, int32_t size) {
  if (size > 0 && distance > size) distance %= size;
  MovableHandle rolled = roll(*picture, distance);
  if (!rolled) return;
  MovableFree(*picture);
  *picture = rolled;
}

// The fill moves with the text: up or down first, then left or right.
void RollFill(TextFrame* frame, int32_t dx, int32_t dy) {
  if (dy < 0) RollPicture(&frame->fillImage, RollUp, -dy, frame->height);
  if (dy > 0) RollPicture(&frame->fillImage, RollDown, dy, frame->height);
  if (dx < 0) RollPicture(&frame->fillImage, RollLeft, -dx, frame->width);
  if (dx > 0) RollPicture(&frame->fillImage, RollRight, dx, frame->width);
}

MovableHandle RenderShaken(WindowHandle window, const FrameSettings* settings,
                           const RattleParams* p) {
  TextFrame frame;
  MovableHandle result = nullptr;
  if (BeginTextFrame(window, settings, &frame)) {
    frame.width += 2 * p->hDisplace;
    frame.height += 2 * p->vDisplace;
    frame.layout.canvasWidth = frame.width;  // the masks are drawn at the canvas size
    frame.layout.canvasHeight = frame.height;
    const int32_t x = p->offsetX + p->vDisplace, y = p->offsetY + p->hDisplace;
    if (BackgroundStep(&frame) && MaterialStep(&frame)) {
      RollFill(&frame, p->offsetX, p->offsetY);
      if (AlphaPlaneStep(&frame) && ShadowStep(&frame, x, y) && FillStep(&frame, x, y) &&
          OutlineStep(&frame, x, y))
        result = FinishFrameStep(&frame);
    }
  }
  EndTextFrame(&frame);
  return result;
}

}  // namespace

MovableHandle MakeRattleTable(WindowHandle dialog, RattleParams* params) {
  DisplacementSettings s;
  s.frames = ReadDlgValue(dialog, kIdFrames);
  s.seed = ReadDlgValue(dialog, kIdSeed);
  s.mode = DialogGetSelection(DialogItem(dialog, kIdMode));
  if (s.mode > kDisplaceStill) s.mode = kDisplaceStill;
  s.hDisplace = ReadDlgValue(dialog, kIdHDisplace);
  s.vDisplace = ReadDlgValue(dialog, kIdVDisplace);
  const int32_t* ratio = SettingInteger("Style018Ratio");
  s.ratio = ratio ? *ratio : kDefaultRatio;
  params->hDisplace = s.hDisplace;
  params->vDisplace = s.vDisplace;
  return MakeDisplacementTable(&s);
}

MovableHandle RenderRattleFrame(BuildContext* context) {
  const RattleParams* params = static_cast<const RattleParams*>(context->params);
  FrameSettings settings;
  FrameTexts text;
  if (!ReadFrameSettings(context->dialog, &kRattleIds, context->sample, &settings, &text))
    return nullptr;
  settings.fills = params->fills;
  MovableHandle image = RenderShaken(context->dialog, &settings, params);
  ReleaseFrameSettings(context->dialog, &kRattleIds);
  return image;
}

int PreviewRattle(BuildContext* context) {
  context->flags |= kBuildFlagPreview;
  RattleParams params{};
  context->params = &params;
  context->image = RenderRattleFrame(context);
  return 1;
}

int BuildRattle(BuildContext* context) {
  WindowHandle dialog = context->dialog;
  // Animated is not read: Rattle always builds every frame of its table.
  const int32_t delay = ReadDlgValue(dialog, kIdDelay);
  const int32_t n = ReadDlgValue(dialog, kIdFrames);
  ScopedFillCache fills;
  RattleParams params{};
  params.fills = &fills.cache;
  context->params = &params;
  ScopedBlock table(MakeRattleTable(dialog, &params));
  ScopedLock entries(table.handle);
  int ok = entries ? 1 : 0;
  if (ok) {
    params.table = reinterpret_cast<const DisplacementEntry*>(entries.bytes);
    context->flags |= kBuildFlagBuild;
    // A first render at rest: a build that can't render fails before any frame is appended.
    MovableHandle trial = RenderRattleFrame(context);
    ok = trial != nullptr;
    MovableFree(trial);
  }
  for (int32_t i = 0; ok && i < n; ++i) {
    params.offsetX = params.table[i].x;
    params.offsetY = params.table[i].y;
    ok = AppendEffectFrame(context, RenderRattleFrame(context), delay);
    if (ok) ReportFrameProgress(context, i, n);
  }
  if (ok) return 1;
  context->image = MovableFree(context->image);
  return 0;
}

int32_t RattleBackground(WindowHandle dialog, int32_t mode) {
  return PageBackgroundKeyColour(dialog, mode, kRattleIds.background);
}
