#include "tests/support/effect_runs.h"

#include "controls/page_setup.h"
#include "controls/value_controls.h"
#include "materials/material.h"
#include "materials/material_button.h"

WindowHandle CreateEffectDialog(const char* text, int32_t size,
                                std::initializer_list<int32_t> materialButtons, uint32_t colour) {
  WindowHandle dialog = CreateValueDialog();
  DialogSetText(DialogItem(dialog, 52), text);
  SetDialogItemInt(dialog, 57, static_cast<uint32_t>(size), 0);
  SetDialogItemInt(dialog, 11, 7, 0);
  for (int32_t id : materialButtons) DialogCreateMaterial(DialogItem(dialog, id), colour);
  return dialog;
}

void SetButtonMaterial(WindowHandle dialog, int32_t id, int32_t kind, uint32_t colour) {
  ScopedLock lock(ButtonMaterialHandle(DialogItem(dialog, id)));
  Material* m = reinterpret_cast<Material*>(lock.bytes);
  m->kind = kind;
  m->solidColour = colour;
}

EffectRun RunBuild(EffectBuild build, WindowHandle dialog) {
  FrameList list{};
  BuildContext context{};
  context.dialog = dialog;
  context.frames = &list;
  EffectRun run;
  run.ok = build(&context);
  {
    ScopedLock lock(list.records);
    const FrameRecord* r = reinterpret_cast<const FrameRecord*>(lock.bytes);
    for (int32_t i = 0; lock && i < list.count; ++i) {
      run.frames.push_back(ReadPicture(r[i].image));
      run.delays.push_back(r[i].delay);
    }
  }
  FreeFrameList(&list);
  return run;
}

PictureValues RunPreview(EffectPreview preview, WindowHandle dialog) {
  BuildContext context{};
  context.dialog = dialog;
  context.sample = 1;
  preview(&context);
  return TakePicture(context.image);
}
