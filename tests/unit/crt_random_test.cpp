#include "shell/crt_random.h"

#include <gtest/gtest.h>

TEST(CrtRandom, SeedOneGivesTheRuntimeSequence) {
  crt::srand(1);
  const int expected[] = {41, 18467, 6334, 26500, 19169};
  for (int value : expected) EXPECT_EQ(crt::rand(), value);
}

TEST(CrtRandom, ReseedingRestartsAndResultsStayFifteenBit) {
  crt::srand(0xDEADBEEF);
  int first[64];
  for (int& v : first) v = crt::rand();
  crt::srand(0xDEADBEEF);
  for (int v : first) {
    const int again = crt::rand();
    EXPECT_EQ(again, v);
    EXPECT_GE(again, 0);
    EXPECT_LE(again, crt::kRandMax);
  }
  // Seed 0: state 2531011 after one step, whose bits 16 to 30 are 38.
  crt::srand(0);
  EXPECT_EQ(crt::rand(), 38);
}
