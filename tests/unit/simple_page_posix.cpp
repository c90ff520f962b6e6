#include <gtest/gtest.h>

#include "controls/page_setup.h"
#include "controls/value_controls.h"
#include "host/host_session.h"
#include "shell/build_pipeline.h"
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
  DialogDestroy(dialog);
}

namespace {

HostSession* buildHost = nullptr;
uint64_t ServeBuild(void* object, int32_t opcode, uint64_t a, uint64_t b) {
  return ServeHostCall(buildHost, object, opcode, a, b);
}

}  // namespace

TEST(SimplePage, BuildFramesFromTheDialogToTheHost) {
  WindowHandle dialog = CreateValueDialog();
  ASSERT_NE(dialog, nullptr);
  for (int32_t id : {100, 102, 104})
    DialogSetUserData(DialogItem(dialog, id),
                      CreateButtonMaterial(id == 104 ? 0xFFFFFF : 0x404040));
  SetDialogItemInt(dialog, 112, 3, 0);
  DialogSetSelection(DialogItem(dialog, 58), kEffectDefaultRow);
  DialogSetCheck(DialogItem(dialog, 10), 0);  // True color off
  DialogSetCheck(DialogItem(dialog, 14), 1);  // Custom palette
  DialogSetCheck(DialogItem(dialog, 62), 1);  // Alpha, which a test turns off for its run
  HostSession session;
  buildHost = &session;
  HostRecord host{};
  host.service = ServeBuild;
  host.capabilities = kHostIndexed;
  const long live = MovableLiveCount();
  ASSERT_EQ(BuildFrames(dialog, &host, 1), 1);
  EXPECT_EQ(MovableLiveCount(), live);
  ASSERT_EQ(session.files.size(), 1u);
  const HostFile& file = *session.files[0];
  EXPECT_TRUE(file.test);
  EXPECT_TRUE(file.committed);
  ASSERT_EQ(file.frames.size(), 3u);
  EXPECT_LE(file.record.bits, 8);
  EXPECT_EQ(file.frames[0].transparent, 0) << "no alpha in a test";
  EXPECT_EQ(DialogGetCheck(DialogItem(dialog, 62)), 1) << "the box is back as it was";
  DialogDestroy(dialog);
}
