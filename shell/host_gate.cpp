// The comparison of the load gate, apart from the reading of the version resource.
#include "shell/host_gate.h"

#include <cstdlib>
#include <cstring>

const char kGateCompanyName[] = "Cobalt Lanternary";

int HostGateAccepts(const char* fileVersion, const char* companyName) {
  if (!fileVersion || !companyName) return 0;
  return atoi(fileVersion) == kGateFileVersion && strcmp(companyName, kGateCompanyName) == 0;
}
