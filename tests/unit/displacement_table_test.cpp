#include "effects/displacement_table.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

#include "tests/support/alloc_sweep.h"

namespace {

using Table = std::vector<DisplacementEntry>;

Table Make(DisplacementSettings s) {
  ScopedBlock block(MakeDisplacementTable(&s));
  ScopedLock lock(block.handle);
  const DisplacementEntry* e = reinterpret_cast<const DisplacementEntry*>(lock.bytes);
  return lock ? Table(e, e + s.frames) : Table();
}

// The random mode written another way: the generator from its recurrence, and "every earlier
// entry equals the pair" as "all earlier entries are alike and the first equals the pair".
Table ReferenceNervous(int32_t n, uint32_t state, int32_t h, int32_t v) {
  auto next = [&state] {
    return static_cast<int32_t>(((state = state * 214013u + 2531011u) >> 16) & 0x7FFF);
  };
  Table t;
  bool alike = true;
  for (int32_t i = 0; i < n; ++i) {
    DisplacementEntry pair{};
    for (int32_t attempt = 0; attempt < n; ++attempt) {
      pair = {next() % (2 * h) - h, next() % (2 * v) - v};
      if (i == 0 || !alike || !(pair == t[0])) break;
    }
    alike = alike && (i == 0 || pair == t[0]);
    t.push_back(pair);
  }
  return t;
}

}  // namespace

TEST(DisplacementTable, RandomModesFollowTheGeneratorAndRefuseOnlyRepeatsOfAStillStart) {
  struct Case {
    int32_t n, seed, h, v;
  } cases[] = {{64, 1017, 6, 6}, {64, 19374, 9, 9}, {40, 100, 1, 1},
               {3, 32760, 1, 1}, {200, 555, 1, 16}, {2, 4242, 16, 1}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.seed);
    const Table nervous = Make({c.n, c.seed, kDisplaceNervous, c.h, c.v, 6});
    EXPECT_EQ(nervous, ReferenceNervous(c.n, c.seed, c.h, c.v));
    // Happy: the same pairs, smallest products first, ties in the order they were drawn.
    Table expected;
    for (int32_t key = 0; key <= c.h * c.v; ++key)
      for (const DisplacementEntry& e : nervous)
        if (std::abs(e.x) * std::abs(e.y) == key) expected.push_back(e);
    EXPECT_EQ(Make({c.n, c.seed, kDisplaceHappy, c.h, c.v, 6}), expected);
  }
}

TEST(DisplacementTable, CurvesSwingFromThreeReachesBelowToOneAboveAndFailuresLeaveNothing) {
  struct Case {
    int32_t mode, n, h, v, ratio;
    Table table;
  } cases[] = {
      // Modes 2 calm, 3 and 4 orbits, 5 infinity, 6 and up still. Eighths of a turn with H = 2:
      // x is trunc(2 * 2 * sin) - 2. At six times the rate, y turns 270 degrees a frame.
      {2, 8, 2, 3, 6, {{-2, -3}, {0, -9}, {2, -3}, {0, 3}, {-2, -3}, {-4, -9}, {-6, -3}, {-4, 3}}},
      {2, 8, 2, 3, 1, {{-2, -3}, {0, 1}, {2, 3}, {0, 1}, {-2, -3}, {-4, -7}, {-6, -9}, {-4, -7}}},
      {5, 8, 2, 3, 6, {{-2, -3}, {0, 3}, {2, -3}, {0, -9}, {-2, -3}, {-4, 3}, {-6, -3}, {-4, -9}}},
      {3, 4, 2, 3, 6, {{-6, 3}, {-2, -3}, {2, -9}, {-2, -3}}},
      {4, 4, 2, 3, 6, {{-2, 3}, {2, -3}, {-2, -9}, {-6, -3}}},
      {4, 1, 16, 5, 6, {{-16, 5}}},           // the first entry is (-H, V)
      {2, 2, 7, 4, 6, {{-7, -4}, {-7, -4}}},  // fractions 0 and 0.5
      {6, 2, 5, 5, 6, {{0, 0}, {0, 0}}},
      {99, 2, 5, 5, 6, {{0, 0}, {0, 0}}},
      {-1, 2, 5, 5, 6, {{0, 0}, {0, 0}}},  // no row selected
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << "mode " << c.mode << ", ratio " << c.ratio);
    EXPECT_EQ(Make({c.n, 1017, c.mode, c.h, c.v, c.ratio}), c.table);
  }
  for (DisplacementSettings none :
       {DisplacementSettings{0, 1017, 0, 3, 3, 6}, DisplacementSettings{4, 1017, 0, 0, 3, 6}})
    EXPECT_EQ(MakeDisplacementTable(&none), nullptr);
  const DisplacementSettings happy{16, 1017, kDisplaceHappy, 3, 3, 6};
  EXPECT_TRUE(SweepAllocationFailures([&] {
    MovableHandle t = MakeDisplacementTable(&happy);
    MovableFree(t);
    return t != nullptr;
  }));
}
