// The comparison of the load gate: FileVersion read as atoi reads it, CompanyName exact.
#include <gtest/gtest.h>

#include "shell/host_gate.h"

TEST(HostGate, VersionAsAnIntegerAndCompanyExactly) {
  const char* company = "Cobalt Lanternary";
  EXPECT_TRUE(HostGateAccepts("16", company));
  EXPECT_TRUE(HostGateAccepts("16.0.0.1", company));
  EXPECT_TRUE(HostGateAccepts(" 16", company));
  EXPECT_TRUE(HostGateAccepts("016", company));
  EXPECT_FALSE(HostGateAccepts("0x10", company));
  EXPECT_FALSE(HostGateAccepts("15", company));
  EXPECT_FALSE(HostGateAccepts("", company));
  EXPECT_FALSE(HostGateAccepts(nullptr, company));
  EXPECT_FALSE(HostGateAccepts("16", nullptr));
  EXPECT_FALSE(HostGateAccepts("16", "Cobalt Lanternary "));
  EXPECT_FALSE(HostGateAccepts("16", "COBALT LANTERNARY"));
  EXPECT_FALSE(HostGateAccepts("16", ""));
}
