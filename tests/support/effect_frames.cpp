#include "tests/support/effect_frames.h"

#include "controls/page_setup.h"
#include "controls/value_controls.h"
#include "documents/settings.h"
#include "materials/material_button.h"
#include "shell/crt_random.h"

BuiltFrames TakeFrames(FrameList* list, int ok) {
  BuiltFrames built;
  built.ok = ok;
  {
    ScopedLock lock(list->records);
    for (int32_t i = 0; lock && i < list->count; ++i) {
      const FrameRecord& r = reinterpret_cast<const FrameRecord*>(lock.bytes)[i];
      built.frames.push_back(ReadPicture(r.image));
      built.delays.push_back(r.delay);
    }
  }
  FreeFrameList(list);
  return built;
}

PageDialog::PageDialog(std::initializer_list<int32_t> materialButtons)
    : materials(materialButtons) {
  // A control changed on Windows stores its value in the settings, which later dialogs start from.
  ResetSettings();
  dialog = CreateValueDialog();
  for (int32_t id : materials)
    DialogSetUserData(DialogItem(dialog, id), CreateButtonMaterial(0x404040));
}

PageDialog::~PageDialog() {
  for (int32_t id : materials) FreeMaterialOfButton(DialogItem(dialog, id));
  DialogDestroy(dialog);
  ResetSettings();
}

BuiltFrames PageDialog::Build(EffectBuild build,
                              std::initializer_list<std::pair<int32_t, int32_t>> values) {
  for (const auto& v : values) SetDialogItemInt(dialog, v.first, v.second, 0);
  FrameList list{};
  BuildContext context{};
  context.dialog = dialog;
  context.frames = &list;
  crt::srand(crt::kStartSeed);  // as a fresh use of the plug-in
  const int ok = build(&context);
  return TakeFrames(&list, ok);
}

PictureValues PageDialog::Preview(EffectPreview preview) {
  BuildContext context{};
  context.dialog = dialog;
  context.sample = 1;
  preview(&context);
  return TakePicture(context.image);
}

int FindBandShift(const PictureValues& frame, const PictureValues& home, bool columns, int first,
                  int count) {
  const int length = columns ? home.height : home.width;
  for (int s = 0; s < length; ++s) {
    bool fits = true;
    for (int k = first; k < first + count && fits; ++k)
      for (int d = 0; d < length && fits; ++d) {
        const int from = (d - s + length) % length;
        fits = columns ? frame.At(k, d) == home.At(k, from) : frame.At(d, k) == home.At(from, k);
      }
    if (fits) return s;
  }
  return -1;
}
