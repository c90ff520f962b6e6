#include <gtest/gtest.h>

#include "controls/page_setup.h"
#include "controls/value_controls.h"
#include "effects/simple.h"
#include "materials/material_button.h"
#include "shell/packed_dib.h"

TEST(SimplePage, PreviewBuildAndKeyColourFromTheDialog) {
  WindowHandle dialog = CreateValueDialog();
  ASSERT_NE(dialog, nullptr);
  const int32_t buttons[3] = {100, 102, 104};
  const uint32_t colours[3] = {0xBD7E40, 0x7F7F7F, 0xFFFFFF};
  BuildContext context{};
  context.dialog = dialog;
  context.sample = 1;
  EXPECT_EQ(SimpleEffectPreview(&context), 1);
  EXPECT_EQ(context.image, nullptr) << "no material records yet: an empty sample";
  EXPECT_EQ(SimpleEffectKeyColour(dialog, 0), -1);
  for (int i = 0; i < 3; ++i)
    DialogSetUserData(DialogItem(dialog, buttons[i]), CreateButtonMaterial(colours[i]));

  ASSERT_EQ(SimpleEffectPreview(&context), 1);
  ASSERT_NE(context.image, nullptr);
  int32_t width;
  {
    ScopedLock lock(context.image);
    width = reinterpret_cast<const BitmapInfoHeader*>(lock.bytes)->biWidth;
    EXPECT_EQ(ReadDibPixel(lock.bytes, 0, 0), 0xFFFFFFu) << "the white Background material";
  }
  MovableFree(context.image);
  EXPECT_GT(width, 100);

  SetDialogItemInt(dialog, 112, 4, 0);  // Frames
  FrameList frames{};
  context = BuildContext{};
  context.dialog = dialog;
  context.frames = &frames;
  ASSERT_EQ(SimpleEffectBuild(&context), 1);
  ASSERT_EQ(frames.count, 4);
  {
    ScopedLock lock(frames.records);
    const FrameRecord* r = reinterpret_cast<const FrameRecord*>(lock.bytes);
    const int32_t delay = ReadDlgValue(dialog, 11), pause = ReadDlgValue(dialog, 23);
    EXPECT_EQ(r[0].delay, delay);
    EXPECT_EQ(r[3].delay, delay + pause);
  }
  FreeFrameList(&frames);

  EXPECT_EQ(SimpleEffectKeyColour(dialog, 0), 0xFFFFFF);
  EXPECT_EQ(SimpleEffectKeyColour(dialog, 1), -1);
  DialogSetCheck(DialogItem(dialog, 62), 1);
  DialogSetCheck(DialogItem(dialog, 63), 1);
  EXPECT_EQ(SimpleEffectKeyColour(dialog, 0), 8355711);
  for (int32_t id : buttons) FreeButtonMaterial(ButtonMaterialHandle(DialogItem(dialog, id)));
  DialogDestroy(dialog);
}
