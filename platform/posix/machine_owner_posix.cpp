// POSIX systems keep no registered owner or organisation: both names stay empty.
#include "platform/machine_owner.h"

void MachineOwnerNames(char* owner, size_t ownerSize, char* organisation, size_t organisationSize) {
  if (owner && ownerSize) owner[0] = 0;
  if (organisation && organisationSize) organisation[0] = 0;
}
