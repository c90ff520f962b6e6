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

// The random modes written another way: the generator from its recurrence, and "every earlier
// entry equals the pair" as "all earlier entries are alike and the first equals the pair".
Table ReferenceNervous(int32_t n, uint32_t seed, int32_t h, int32_t v) {
  uint32_t state = seed;
  auto next = [&state] {
    state = state * 214013u + 2531011u;
    return static_cast<int32_t>((state >> 16) & 0x7FFF);
  };
  Table t;
  bool alike = true;
  for (int32_t i = 0; i < n; ++i) {
    DisplacementEntry pair{};
    for (int32_t attempt = 0; attempt < n; ++attempt) {
      pair.x = next() % (2 * h) - h;
      pair.y = next() % (2 * v) - v;
      if (i == 0 || !alike || pair.x != t[0].x || pair.y != t[0].y) break;
    }
    if (i > 0 && (pair.x != t[0].x || pair.y != t[0].y)) alike = false;
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
    for (const DisplacementEntry& e : nervous) {
      EXPECT_TRUE(e.x >= -c.h && e.x < c.h && e.y >= -c.v && e.y < c.v);
    }
    EXPECT_EQ(Make({c.n, c.seed, kDisplaceNervous, c.h, c.v, 6}), nervous) << "same seed";
    EXPECT_NE(Make({c.n, c.seed + 1, kDisplaceNervous, c.h, c.v, 6}), nervous) << "other seed";

    // Happy: the same pairs, smallest products first, ties in the order they were drawn.
    const Table happy = Make({c.n, c.seed, kDisplaceHappy, c.h, c.v, 6});
    Table expected;
    for (int32_t key = 0; key <= c.h * c.v; ++key)
      for (const DisplacementEntry& e : nervous)
        if (std::abs(e.x) * std::abs(e.y) == key) expected.push_back(e);
    EXPECT_EQ(happy, expected);
  }
}

TEST(DisplacementTable, CurvesSwingFromThreeReachesBelowToOneAboveAndFailuresLeaveNothing) {
  struct Case {
    int32_t mode, n, h, v;
    std::vector<int32_t> x, y;
  } cases[] = {
      // n = 8, H = 2: sin of eighths of a turn, trunc(2 * 2 * sin) - 2.
      {kDisplaceCalm, 8, 2, 3, {-2, 0, 2, 0, -2, -4, -6, -4}, {-3, -9, -3, 3, -3, -9, -3, 3}},
      {kDisplaceOrbitCw, 4, 2, 3, {-6, -2, 2, -2}, {3, -3, -9, -3}},
      {kDisplaceOrbitCcw, 4, 2, 3, {-2, 2, -2, -6}, {3, -3, -9, -3}},
      {kDisplaceOrbitCcw, 1, 16, 5, {-16}, {5}},  // the first entry is (-H, V)
      {kDisplaceInfinity, 8, 2, 3, {-2, 0, 2, 0, -2, -4, -6, -4}, {-3, 3, -3, -9, -3, 3, -3, -9}},
      {kDisplaceCalm, 2, 7, 4, {-7, -7}, {-4, -4}},  // fractions 0 and 0.5: sines of 0
      {kDisplaceStill, 3, 5, 5, {0, 0, 0}, {0, 0, 0}},
      {99, 2, 5, 5, {0, 0}, {0, 0}},
      {-1, 2, 5, 5, {0, 0}, {0, 0}},  // no row selected
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << "mode " << c.mode << ", " << c.n << " frames");
    const Table t = Make({c.n, 1017, c.mode, c.h, c.v, 6});
    ASSERT_EQ(t.size(), c.x.size());
    for (size_t i = 0; i < t.size(); ++i) {
      EXPECT_EQ(t[i].x, c.x[i]) << i;
      EXPECT_EQ(t[i].y, c.y[i]) << i;
    }
  }
  // The calm mode's vertical rate comes from the ratio: at 1, y follows the same sine as x.
  const Table calm = Make({8, 1, kDisplaceCalm, 2, 3, 1});
  const int32_t y[8] = {-3, 1, 3, 1, -3, -7, -9, -7};
  for (int32_t i = 0; i < 8; ++i) EXPECT_EQ(calm[i].y, y[i]) << i;

  const DisplacementSettings none{0, 1017, kDisplaceNervous, 3, 3, 6};
  EXPECT_EQ(MakeDisplacementTable(&none), nullptr);
  const DisplacementSettings happy{16, 1017, kDisplaceHappy, 3, 3, 6};
  EXPECT_TRUE(SweepAllocationFailures([&] {
    MovableHandle t = MakeDisplacementTable(&happy);
    MovableFree(t);
    return t != nullptr;
  }));
}
