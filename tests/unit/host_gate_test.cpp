// The comparison of the load gate: FileVersion read as atoi reads it, CompanyName exact.
#include <gtest/gtest.h>

#include "shell/host_gate.h"

TEST(HostGate, VersionAsAnIntegerAndCompanyExactly) {
  const char* company = "Cobalt Lanternary";
  for (const char* version : {"16", "16.0.0.1", " 16", "016"})
    EXPECT_TRUE(HostGateAccepts(version, company)) << version;
  for (const char* version : {"0x10", "15", "", static_cast<const char*>(nullptr)})
    EXPECT_FALSE(HostGateAccepts(version, company)) << (version ? version : "null");
  for (const char* other :
       {"Cobalt Lanternary ", "COBALT LANTERNARY", "", static_cast<const char*>(nullptr)})
    EXPECT_FALSE(HostGateAccepts("16", other)) << (other ? other : "null");
}
