#include "tests/support/effect_builds.h"

#include <gtest/gtest.h>

#include "controls/page_setup.h"
#include "controls/value_controls.h"
#include "documents/settings.h"
#include "shell/packed_dib.h"

Pixels PicturePixels(MovableHandle image) {
  Pixels pixels;
  ScopedLock lock(image);
  if (!lock) return pixels;
  const BitmapInfoHeader* h = reinterpret_cast<const BitmapInfoHeader*>(lock.bytes);
  for (int32_t y = 0; y < h->biHeight; ++y)
    for (int32_t x = 0; x < h->biWidth; ++x) pixels.push_back(ReadDibPixel(lock.bytes, x, y));
  return pixels;
}

BuiltFrames BuildEffectFrames(EffectBuild build, WindowHandle dialog) {
  FrameList list{};
  BuildContext context{};
  context.dialog = dialog;
  context.frames = &list;
  BuiltFrames b{};
  b.ok = build(&context);
  b.flags = context.flags;
  MovableFree(context.image);
  {
    ScopedLock lock(list.records);
    for (int32_t i = 0; lock && i < list.count; ++i) {
      const FrameRecord& r = reinterpret_cast<const FrameRecord*>(lock.bytes)[i];
      b.frames.push_back(PicturePixels(r.image));
      b.delays.push_back(r.delay);
      if (i == 0) {
        ScopedLock image(r.image);
        const BitmapInfoHeader* h = reinterpret_cast<const BitmapInfoHeader*>(image.bytes);
        b.width = h ? h->biWidth : 0;
        b.height = h ? h->biHeight : 0;
      }
    }
  }
  FreeFrameList(&list);
  return b;
}

Pixels PreviewEffectPixels(EffectPreview preview, WindowHandle dialog) {
  BuildContext context{};
  context.dialog = dialog;
  context.sample = 1;
  EXPECT_EQ(preview(&context), 1);
  EXPECT_EQ(context.flags, kBuildFlagPreview);
  ScopedBlock image(context.image);
  return PicturePixels(image.handle);
}

WindowHandle SmallEffectDialog(std::initializer_list<int32_t> materials,
                               std::initializer_list<uint32_t> colours) {
  ResetSettings();  // earlier tests may have left the settings elsewhere
  WindowHandle dialog = CreateValueDialog();
  if (!dialog) return nullptr;
  const uint32_t* colour = colours.begin();
  for (int32_t id : materials) {
    if (!DialogCreateMaterial(DialogItem(dialog, id), *colour)) {
      DialogDestroy(dialog);
      return nullptr;
    }
    if (colour + 1 != colours.end()) ++colour;
  }
  SetDialogItemInt(dialog, 57, 16, 0);  // the font size
  return dialog;
}

void SelectComboRow(WindowHandle dialog, int32_t id, int row) {
  DialogSetSelection(DialogItem(dialog, id), row);
}
