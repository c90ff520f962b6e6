#include "shell/effect_table.h"

#include <cstring>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "shell/packed_dib.h"
#include "tests/support/alloc_sweep.h"

TEST(EffectTable, RowsKeepTheStoredOrderAndStyles) {
  EXPECT_STREQ(EffectTable[kEffectDefaultRow].name, "Simple");
  EXPECT_EQ(EffectStyle[kEffectDefaultRow], 0);
  // Omni stands ahead of Machine, out of alphabetical order, because documents store the index.
  EXPECT_STREQ(EffectTable[5].name, "Omni");
  EXPECT_STREQ(EffectTable[6].name, "Machine");
  EXPECT_STREQ(EffectTable[0].name, "Arrows");
  EXPECT_STREQ(EffectTable[20].name, "Zipper");
  std::set<int32_t> styles;
  for (int32_t row = 0; row < kEffectCount; ++row) {
    styles.insert(EffectStyle[row]);
    EXPECT_EQ(EffectPageId(row), 7400 + EffectStyle[row]);
    if (row > 0 && row != 5 && row != 6)
      EXPECT_LT(std::string(EffectTable[row - 1].name), EffectTable[row].name) << row;
  }
  EXPECT_EQ(styles.size(), 21u);
  EXPECT_EQ(*styles.begin(), 0);
  EXPECT_EQ(*styles.rbegin(), 20);
}

TEST(EffectTable, SelectedRowsAreClampedForBuildAndPage) {
  EXPECT_EQ(EffectRowForBuild(-1), 0);
  EXPECT_EQ(EffectRowForPage(-1), 0);
  EXPECT_EQ(EffectRowForBuild(20), 20);
  EXPECT_EQ(EffectRowForBuild(21), 20);
  EXPECT_EQ(EffectRowForPage(21), 21);
  EXPECT_EQ(EffectRowForPage(1000), 21);
  EXPECT_EQ(EffectPageId(99), 7414);  // clamped to Zipper, style 14
}

TEST(EffectTable, PageIdRangesHaveExactEdges) {
  const int32_t inside[] = {100, 1198, 10100, 11198};
  const int32_t outside[] = {99, 1199, 10099, 11199, 0, 58, -100};
  for (int32_t id : inside) EXPECT_TRUE(IsPageControlId(id)) << id;
  for (int32_t id : outside) EXPECT_FALSE(IsPageControlId(id)) << id;
  const int32_t list[] = {100, 10100, 124, 0};
  EXPECT_TRUE(ListHasControl(list, 10100));
  EXPECT_FALSE(ListHasControl(list, 0));
  EXPECT_FALSE(ListHasControl(nullptr, 100));
}

TEST(EffectTable, RowsWithoutProceduresAreHandledByTheShell) {
  // Rows whose effect has not landed: a build is skipped with an empty list, a preview yields
  // nothing, and there is no key colour.
  for (int32_t row = 0; row < kEffectCount; ++row) {
    if (EffectTable[row].build || EffectTable[row].preview || EffectTable[row].keyColour) continue;
    FrameList frames = {nullptr, 0};
    BuildContext context;
    std::memset(&context, 0, sizeof context);
    context.frames = &frames;
    EXPECT_EQ(RunEffectBuild(row, &context), 1);
    EXPECT_EQ(frames.count, 0);
    EXPECT_EQ(RunEffectPreview(row, &context), 0);
    EXPECT_EQ(context.image, nullptr);
    EXPECT_EQ(RunEffectKeyColour(row, nullptr, 0), -1);
  }
}

namespace {

FrameRecord FrameWithImage(int32_t delay) {
  FrameRecord frame;
  std::memset(&frame, 0, sizeof frame);
  frame.image = CreatePackedDib(4, 4, nullptr, 24);
  frame.delay = delay;
  frame.transparentIndex = -1;
  return frame;
}

}  // namespace

TEST(FrameList, AppendKeepsEveryRecordAndFreeReleasesEverything) {
  const long before = MovableLiveCount();
  FrameList list = {nullptr, 0};
  for (int32_t i = 0; i < 5; ++i) {
    FrameRecord frame = FrameWithImage(10 + i);
    if (i == 3) frame.mask = CreatePackedDib(4, 4, nullptr, 1);
    ASSERT_EQ(AppendFrame(&list, &frame), 1);
  }
  ASSERT_EQ(list.count, 5);
  {
    ScopedLock lock(list.records);
    const FrameRecord* records = reinterpret_cast<const FrameRecord*>(lock.bytes);
    for (int32_t i = 0; i < 5; ++i) {
      EXPECT_EQ(records[i].delay, 10 + i);
      EXPECT_EQ(records[i].transparentIndex, -1);
      EXPECT_NE(records[i].image, nullptr);
      EXPECT_EQ(records[i].mask != nullptr, i == 3);
    }
  }
  FreeFrameList(&list);
  EXPECT_EQ(list.records, nullptr);
  EXPECT_EQ(list.count, 0);
  EXPECT_EQ(MovableLiveCount(), before);
  FreeFrameList(&list);  // an empty list frees nothing and stays empty
  EXPECT_EQ(list.count, 0);
}

TEST(FrameList, AppendOnAFullHeapKeepsTheOldList) {
  FrameList list = {nullptr, 0};
  FrameRecord first = FrameWithImage(1);
  ASSERT_EQ(AppendFrame(&list, &first), 1);
  FrameRecord second = FrameWithImage(2);
  MovableFailAllocation(1);
  EXPECT_EQ(AppendFrame(&list, &second), 0);
  MovableFailAllocation(0);
  EXPECT_EQ(list.count, 1);
  {
    ScopedLock lock(list.records);
    EXPECT_EQ(reinterpret_cast<const FrameRecord*>(lock.bytes)[0].image, first.image);
  }
  MovableFree(second.image);
  FreeFrameList(&list);

  // A whole build of three frames, as an effect does it: on a failed append the effect frees its
  // frame, and the frames already appended are freed with the list.
  EXPECT_TRUE(SweepAllocationFailures([] {
    FrameList frames = {nullptr, 0};
    for (int32_t i = 0; i < 3; ++i) {
      FrameRecord frame = FrameWithImage(i);
      if (!frame.image || !AppendFrame(&frames, &frame)) {
        MovableFree(frame.image);
        FreeFrameList(&frames);
        return 0;
      }
    }
    const int complete = frames.count == 3;
    FreeFrameList(&frames);
    return complete;
  }));
}
