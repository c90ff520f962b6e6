// The owner and organisation this machine was registered to, as the system keeps them; files
// that the user makes are stamped with them.
#pragma once

#include <cstddef>

// Writes both names, zero-terminated and cut to fit; a name the system doesn't keep is left empty.
void MachineOwnerNames(char* owner, size_t ownerSize, char* organisation, size_t organisationSize);
