#include "tests/support/motion_scenes.h"

#include "controls/item_text.h"
#include "controls/page_setup.h"
#include "controls/value_controls.h"
#include "documents/settings.h"
#include "effects/heartbeat.h"
#include "effects/rattle.h"
#include "effects/ring.h"
#include "effects/tracks.h"
#include "effects/unplugged_tv.h"
#include "effects/waterside.h"
#include "platform/dialog.h"
#include "tests/support/value_dialog.h"

// The glyph share bounds are measured on the text "Go" at 16 pixels in the substituted face, which
// covers much of the smaller canvases. Under Wine the glyphs come out a little differently after
// the other Windows tests have run in the same process than when the writer runs alone, so the
// larger of the two was kept: 0.206, 0.484, 0.494, 0.285, 0.004 and 0.293 in turn.
const MotionScene kMotionScenes[kMotionSceneCount] = {
    {"rattle", BuildRattle, {{884, 0x2050C0}, {886, 0x404040}, {888, 0xFFFFFF}}, {896, 4}, {},
     0.25},
    {"heartbeat", BuildHeartbeat, {{561, 0x2050C0}, {563, 0x404040}}, {573, 4}, {}, 0.53},
    {"waterside", WatersideEffectBuild, {{467, 0x2050C0}, {469, 0x404040}}, {479, 4}, {}, 0.54},
    {"tracks", TracksEffectBuild, {{729, 0x2050C0}, {731, 0x404040}}, {741, 4}, {}, 0.32},
    // 60 degrees a frame: six frames to the turn.
    {"ring", RingEffectBuild, {{134, 0xBD7E40}, {136, 0x7F7F7F}, {138, 0xFFFFFF}}, {}, {154, 33},
     0.01},
    // The page's own colours; two frames a phase keep the many phases quick.
    {"unplugged-tv",
     UnpluggedTvEffectBuild,
     {{923, 0x7F7F7F},
      {925, 0x202020},
      {943, 0xFF0000},
      {945, 0x00FF00},
      {947, 0x00CCFF},
      {949, 0x0033CC},
      {951, 0x0066FF}},
     {941, 2},
     {},
     0.33}};

int BuildMotionScene(int32_t index, std::vector<MotionFrame>* frames) {
  const MotionScene& scene = kMotionScenes[index];
  ResetSettings();  // earlier tests may have left the settings elsewhere
  WindowHandle dialog = CreateValueDialog();
  if (!dialog) return 0;
  AddTestFonts(dialog);  // a named face, which both platforms find or replace alike
  DialogSetText(DialogItem(dialog, 52), "Go");
  SetDialogItemInt(dialog, 57, 16, 0);  // the font size
  SetDialogItemInt(dialog, 11, 7, 0);   // the delay
  int ok = 1;
  for (const auto& m : scene.materials)
    if (m[0]) ok &= DialogCreateMaterial(DialogItem(dialog, static_cast<int32_t>(m[0])), m[1]);
  if (scene.frames[0])
    SetDialogItemInt(dialog, scene.frames[0], static_cast<uint32_t>(scene.frames[1]), 0);
  if (scene.combo[0]) DialogSetSelection(DialogItem(dialog, scene.combo[0]), scene.combo[1]);

  FrameList list{};
  BuildContext context{};
  context.dialog = dialog;
  context.frames = &list;
  ok = ok && scene.build(&context);
  MovableFree(context.image);
  {
    ScopedLock lock(list.records);
    FrameRecord* r = reinterpret_cast<FrameRecord*>(lock.bytes);
    for (int32_t i = 0; ok && lock && i < list.count; ++i) {
      frames->push_back({r[i].image, r[i].delay});
      r[i].image = nullptr;  // now the caller's
    }
  }
  FreeFrameList(&list);
  DialogDestroy(dialog);
  if (!ok) {
    for (const MotionFrame& f : *frames) MovableFree(f.image);
    frames->clear();
  }
  return ok;
}
