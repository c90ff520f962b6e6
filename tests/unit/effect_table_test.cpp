#include "shell/effect_table.h"

#include <cstring>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "shell/packed_dib.h"
#include "tests/support/alloc_sweep.h"

// Documents store the row index, so the rows keep their order: alphabetical but for Omni ahead of
// Machine. Each row has a style of its own and the page of that style.
TEST(EffectTable, RowsKeepTheStoredOrderStylesAndClamps) {
  std::set<int32_t> styles;
  for (int32_t row = 0; row < kEffectCount; ++row) styles.insert(EffectStyle[row]);
  EXPECT_EQ(styles.size(), 21u);
  EXPECT_EQ(*styles.rbegin(), 20);
  // A build clamps to the last row; a page may name one past it, which has no controls.
  const int32_t clamps[][3] = {{-1, 0, 0}, {20, 20, 20}, {21, 20, 21}, {1000, 20, 21}};
  for (const auto& c : clamps) {
    EXPECT_EQ(EffectRowForBuild(c[0]), c[1]) << c[0];
    EXPECT_EQ(EffectRowForPage(c[0]), c[2]) << c[0];
  }
  EXPECT_EQ(EffectPageId(99), 7414);  // clamped to Zipper, style 14
}

TEST(EffectTable, PageIdRangesHaveExactEdges) {
  for (int32_t id : {100, 1198, 10100, 11198}) EXPECT_TRUE(IsPageControlId(id)) << id;
  for (int32_t id : {99, 1199, 10099, 11199, 0, 58, -100}) EXPECT_FALSE(IsPageControlId(id)) << id;
  const int32_t list[] = {100, 10100, 124, 0};
  EXPECT_TRUE(ListHasControl(list, 10100));
  EXPECT_FALSE(ListHasControl(list, 0));
  EXPECT_FALSE(ListHasControl(nullptr, 100));
}

// Rows whose effect has not landed: a build is skipped with an empty list, a preview yields
// nothing, and there is no key colour.
TEST(EffectTable, RowsWithoutProceduresAreHandledByTheShell) {
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

// Appends keep every record; a failed append keeps the old list; freeing releases every image and
// mask; and a whole build of three frames, as an effect does it, leaks nothing on any failure.
TEST(FrameList, AppendKeepsTheRecordsAndFreeReleasesEverything) {
  const long before = MovableLiveCount();
  FrameList list = {nullptr, 0};
  for (int32_t i = 0; i < 5; ++i) {
    FrameRecord frame = FrameWithImage(10 + i);
    if (i == 3) frame.mask = CreatePackedDib(4, 4, nullptr, 1);
    ASSERT_EQ(AppendFrame(&list, &frame), 1);
  }
  FrameRecord extra = FrameWithImage(99);
  MovableFailAllocation(1);
  EXPECT_EQ(AppendFrame(&list, &extra), 0);
  MovableFailAllocation(0);
  MovableFree(extra.image);
  ASSERT_EQ(list.count, 5);
  {
    ScopedLock lock(list.records);
    const FrameRecord* records = reinterpret_cast<const FrameRecord*>(lock.bytes);
    for (int32_t i = 0; i < 5; ++i) {
      EXPECT_EQ(records[i].delay, 10 + i);
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
