// The animation picker's block walk against damaged blocks, its frame service and built-in clip,
// its document line and a host's answers, and Omni's frame loop over the picker's frames.
#include "controls/animation_picker.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "controls/page_setup.h"
#include "controls/value_controls.h"
#include "effects/omni.h"
#include "shell/host_interface.h"
#include "shell/messages.h"
#include "shell/packed_dib.h"
#include "tests/support/alloc_sweep.h"
#include "tests/support/box_answers.h"
#include "tests/support/sized_runs.h"

namespace {

// A 24-bit strip of `count` square frames of side `side`, frame k a plain colour of red k * 7.
MovableHandle PlainStrip(int32_t side, int32_t count) {
  MovableHandle strip = CreatePackedDib(side, side * count, nullptr, 24);
  ScopedLock lock(strip);
  for (int32_t y = 0; y < side * count; ++y)
    for (int32_t x = 0; x < side; ++x)
      WriteDibPixel(lock.bytes, x, y, static_cast<uint32_t>((y / side) * 7) | 0x200000u);
  return strip;
}

std::vector<uint8_t> Bytes(MovableHandle block) {
  ScopedLock lock(block);
  return std::vector<uint8_t>(lock.bytes, lock.bytes + MovableSize(block));
}

MovableHandle Block(const std::vector<uint8_t>& bytes) {
  return CopyToMovableBlock(bytes.data(), bytes.size());
}

void Put(std::vector<uint8_t>* b, size_t at, uint32_t v) {
  std::memcpy(b->data() + at, &v, 4);
}

// A host whose answer to HostOpOpenAnimation is set by the test; it remembers the path asked.
MovableHandle g_answer = nullptr;
std::string g_asked;
uint64_t AnswerAnimation(void*, int32_t opcode, uint64_t, uint64_t b) {
  if (opcode != HostOpOpenAnimation) return 0;
  g_asked = reinterpret_cast<const AnimationRequest*>(b)->path;
  MovableHandle answer = g_answer;
  g_answer = nullptr;
  return reinterpret_cast<uint64_t>(answer);
}

}  // namespace

TEST(AnimationPicker, BlockWalkRefusesDamagedBlocksAndTheFrameServiceNeverReadsOutside) {
  ScopedBlock strip(PlainStrip(16, 3));
  ScopedBlock clip(MakeClipBlock(strip.handle, 0xFFFFFF, 1));
  const std::vector<uint8_t> good = Bytes(clip.handle);
  ASSERT_TRUE(ValidateAnimationBlock(clip.handle));
  const size_t entry0 = 872, step = 2416 + 40 + 16 * 48, end = 872 + 3 * step;
  // Every cut that loses part of the walk, down to the empty block, is refused.
  for (size_t cut = 0; cut < end + 4; cut += 7) {
    ScopedBlock b(Block(std::vector<uint8_t>(good.begin(), good.begin() + cut)));
    EXPECT_FALSE(ValidateAnimationBlock(b.handle)) << cut;
    int32_t delay = -5;
    ScopedBlock frame(AnimationFrame(b.handle, 2, &delay));
    if (cut < end) EXPECT_EQ(frame.handle, nullptr) << cut;
  }
  const struct {
    size_t at;
    uint32_t value;
    int valid;
  } damages[] = {
      {0, kAnimationEntryMagic, 0},             // wrong head mark
      {entry0 + step, kAnimationBlockMagic, 0}, // wrong entry mark
      {end, kAnimationEntryMagic, 0},           // no end mark
      {entry0 + 2416, 41, 0},                   // not a BITMAPINFOHEADER
      {entry0 + 16, 0xFFFFFFF0u, 0},            // data far past the end
      {entry0 + 4, 0xFFFFFFF0u, 0},             // entry header far past the end
      {4, 0xFFFFFFFCu, 0},                      // head size far past the end
      {16, 0xFFFFFFFFu, 1},                     // a count past the end: the end mark ends it
      {16, 2, 0},                               // a count short of the end: no end mark there
  };
  for (const auto& d : damages) {
    std::vector<uint8_t> bad = good;
    Put(&bad, d.at, d.value);
    ScopedBlock b(Block(bad));
    EXPECT_EQ(ValidateAnimationBlock(b.handle), d.valid) << d.at;
  }
  // A count past the end serves the last frame the block holds.
  std::vector<uint8_t> over = good;
  Put(&over, 16, 1000);
  ScopedBlock overBlock(Block(over));
  ScopedBlock last(AnimationFrame(clip.handle, 2, nullptr));
  ScopedBlock overLast(AnimationFrame(overBlock.handle, 999, nullptr));
  EXPECT_EQ(Bytes(overLast.handle), Bytes(last.handle));
  // A picture header asking for far more than its data holds gives no frame.
  std::vector<uint8_t> huge = good;
  Put(&huge, entry0 + 2416 + 4, 60000);
  Put(&huge, entry0 + 2416 + 8, 60000);
  ScopedBlock hugeBlock(Block(huge));
  EXPECT_TRUE(ValidateAnimationBlock(hugeBlock.handle));
  EXPECT_EQ(AnimationFrame(hugeBlock.handle, 0, nullptr), nullptr);
  // A head of no frames followed at once by the end mark is valid and serves nothing.
  std::vector<uint8_t> empty(24, 0);
  Put(&empty, 0, kAnimationBlockMagic);
  Put(&empty, 4, 20);
  Put(&empty, 20, kAnimationEndMagic);
  ScopedBlock emptyBlock(Block(empty));
  EXPECT_TRUE(ValidateAnimationBlock(emptyBlock.handle));
  EXPECT_EQ(AnimationFrameCount(emptyBlock.handle), 0);
  EXPECT_EQ(AnimationFrame(emptyBlock.handle, 0, nullptr), nullptr);
}

TEST(AnimationPicker, ClipFramesBlendOverTheBackgroundAndNumbersBeyondGiveTheLast) {
  ScopedBlock strip(PlainStrip(16, 36));
  ScopedBlock slow(MakeClipBlock(strip.handle, 0x00FF00, 0));
  ASSERT_EQ(AnimationFrameCount(slow.handle), 36);
  int32_t delay = 0;
  ScopedBlock beyond(AnimationFrame(slow.handle, 1000, &delay));
  EXPECT_EQ(delay, kClipSlowDelay);
  ScopedBlock last(AnimationFrame(slow.handle, 35, nullptr));
  ASSERT_NE(beyond.handle, nullptr);
  EXPECT_EQ(Bytes(beyond.handle), Bytes(last.handle));
  {
    ScopedLock l(beyond.handle);
    EXPECT_EQ(ReadDibPixel(l.bytes, 5, 9), 0x200000u | 35 * 7) << "24 bits count as opaque";
  }
  // Alpha 0 shows the background, alpha 255 the strip, whatever the background.
  ScopedBlock ball(MakeClipStrip());
  for (uint32_t background : {0x000000u, 0xFFFFFFu}) {
    ScopedBlock fast(MakeClipBlock(ball.handle, background, 1));
    ScopedBlock frame(AnimationFrame(fast.handle, 0, &delay));
    EXPECT_EQ(delay, kClipFastDelay);
    ScopedLock f(frame.handle), s(ball.handle);
    for (int32_t y = 0; y < 16; ++y)
      for (int32_t x = 0; x < 16; ++x) {
        const uint32_t source = ReadDibPixel(s.bytes, x, y);
        const uint32_t want = source >> 24 == 255 ? source & 0xFFFFFF : background;
        ASSERT_EQ(source >> 24 == 0 || source >> 24 == 255, true);
        EXPECT_EQ(ReadDibPixel(f.bytes, x, y), want) << x << "," << y;
      }
  }
}

TEST(AnimationPicker, LinesLoadThroughTheHostAndRefusalsKeepAPicture) {
  const long live = MovableLiveCount();
  WindowHandle dialog = CreateValueDialog();
  ASSERT_NE(dialog, nullptr);
  WindowHandle picker = DialogItem(dialog, 612);
  HostRecord host{};
  host.service = AnswerAnimation;
  HostRecord* saved = CurrentHost;
  CurrentHost = &host;
  // An empty line: the built-in clip, an empty path, and the line written back as it came.
  ASSERT_EQ(DialogReadLine(picker, "ANMCTL612="), 1);
  ASSERT_EQ(AnimationFrameCount(AnimationPickerBlock(picker)), 12);
  char line[kControlLineSize];
  EXPECT_EQ(std::string(line, AnimationPickerFormatLine(picker, line, sizeof line)), "ANMCTL612=");
  // A file that exists: the host's block is held and the path round-trips.
  const std::string file = ::testing::TempDir() + "gm5_anim_picker.gif";
  fclose(fopen(file.c_str(), "w"));
  MovableHandle three = PlainStrip(8, 3);
  g_answer = MakeClipBlock(three, 0, 1);
  MovableFree(three);
  ASSERT_EQ(DialogReadLine(picker, ("ANMCTL612=" + file + "\r\n").c_str()), 1);
  EXPECT_EQ(g_asked, file);
  EXPECT_EQ(AnimationFrameCount(AnimationPickerBlock(picker)), 3);
  EXPECT_EQ(std::string(line, AnimationPickerFormatLine(picker, line, sizeof line)),
            "ANMCTL612=" + file);
  // The user cancels: the path empties, the picture stays.
  MovableHandle held = AnimationPickerBlock(picker);
  EXPECT_EQ(AnimationPickerChoose(picker), 0);
  EXPECT_EQ(AnimationPickerBlock(picker), held);
  EXPECT_STREQ(AnimationPickerPath(picker), "");
  // A damaged block is refused with the message; the clip takes its place.
  AnsweredBoxes boxes;
  std::vector<uint8_t> damaged = Bytes(held);
  Put(&damaged, 0, 0);
  g_answer = Block(damaged);
  RecordShownMessage("");
  ASSERT_EQ(DialogReadLine(picker, ("ANMCTL612=" + file).c_str()), 1);
  EXPECT_STREQ(LastShownMessage(), kAnimationOpenFailure);
  EXPECT_EQ(AnimationFrameCount(AnimationPickerBlock(picker)), 12);
  EXPECT_STREQ(AnimationPickerPath(picker), "");
  // A file that no longer exists is not reported: the clip, quietly.
  remove(file.c_str());
  RecordShownMessage("");
  ASSERT_EQ(DialogReadLine(picker, ("ANMCTL612=" + file).c_str()), 1);
  EXPECT_STREQ(LastShownMessage(), "");
  EXPECT_EQ(AnimationFrameCount(AnimationPickerBlock(picker)), 12);
  CurrentHost = saved;
  DialogDestroy(dialog);
  EXPECT_EQ(MovableLiveCount(), live);
}

TEST(OmniPage, BuildsOneFramePerSourceFrameWithItsDelayAndTheSampleIsFrameZero) {
  WindowHandle dialog = CreateValueDialog();
  ASSERT_NE(dialog, nullptr);
  ASSERT_EQ(DialogCreateMaterial(DialogItem(dialog, 596), 0x7F7F7F), 1);
  ASSERT_EQ(DialogCreateMaterial(DialogItem(dialog, 598), 0xFFFFFF), 1);
  SetDialogItemInt(dialog, 57, 16, 0);
  EXPECT_EQ(OmniEffectKeyColour(dialog, 0), 0xFFFFFF);
  // The built-in clip, made without a host: twelve frames at the slow delay.
  const SizedRun clip = RunSized(dialog, OmniEffectBuild);
  ASSERT_EQ(clip.ok, 1);
  EXPECT_EQ(clip.delays, std::vector<int32_t>(12, kClipSlowDelay));
  EXPECT_EQ(RunSized(dialog, OmniEffectBuild).frames, clip.frames);
  EXPECT_NE(clip.frames[0], clip.frames[6]) << "the ball moves and changes colour";
  BuildContext preview{};
  preview.dialog = dialog;
  preview.sample = 1;
  ASSERT_EQ(OmniEffectPreview(&preview), 1);
  EXPECT_EQ(SizedPixels(preview.image), clip.frames[0]);
  MovableFree(preview.image);
  // A source whose frames differ only in delay: the same pictures, its delays frame for frame.
  WindowHandle picker = DialogItem(dialog, 612);
  ScopedBlock strip(PlainStrip(16, 4));
  MovableHandle block = MakeClipBlock(strip.handle, 0, 1);
  std::vector<uint8_t> bytes = Bytes(block);
  MovableFree(block);
  const size_t step = 2416 + 40 + 16 * 48;
  for (uint32_t k = 0; k < 4; ++k) Put(&bytes, 872 + k * step + 20, 5 + k * 10);
  HostRecord host{};
  host.service = AnswerAnimation;
  HostRecord* saved = CurrentHost;
  CurrentHost = &host;
  const std::string file = ::testing::TempDir() + "gm5_omni.gif";
  fclose(fopen(file.c_str(), "w"));
  g_answer = Block(bytes);
  ASSERT_EQ(DialogReadLine(picker, ("ANMCTL612=" + file).c_str()), 1);
  CurrentHost = saved;
  const SizedRun four = RunSized(dialog, OmniEffectBuild);
  ASSERT_EQ(four.ok, 1);
  EXPECT_EQ(four.delays, (std::vector<int32_t>{5, 15, 25, 35}));
  EXPECT_NE(four.frames[0], four.frames[3]);
  EXPECT_TRUE(SweepAllocationFailures([dialog] { return RunSized(dialog, OmniEffectBuild).ok; }));
  // A source of no frames builds none.
  std::vector<uint8_t> none(24, 0);
  Put(&none, 0, kAnimationBlockMagic);
  Put(&none, 4, 20);
  Put(&none, 20, kAnimationEndMagic);
  CurrentHost = &host;
  g_answer = Block(none);
  ASSERT_EQ(DialogReadLine(picker, ("ANMCTL612=" + file).c_str()), 1);
  CurrentHost = saved;
  const SizedRun empty = RunSized(dialog, OmniEffectBuild);
  EXPECT_EQ(empty.ok, 1);
  EXPECT_TRUE(empty.frames.empty());
  remove(file.c_str());
  DialogDestroy(dialog);
}
