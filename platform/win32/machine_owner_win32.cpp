// The registered owner and organisation are values of the system's CurrentVersion key.
#include <windows.h>

#include "platform/machine_owner.h"

namespace {

void ReadSystemName(const char* value, char* text, size_t size) {
  if (!text || !size) return;
  text[0] = 0;
  HKEY key;
  if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion", 0,
                    KEY_QUERY_VALUE, &key) != ERROR_SUCCESS)
    return;
  DWORD type = 0;
  DWORD bytes = static_cast<DWORD>(size - 1);  // room for a terminator the value may lack
  if (RegQueryValueExA(key, value, nullptr, &type, reinterpret_cast<BYTE*>(text), &bytes) !=
          ERROR_SUCCESS ||
      type != REG_SZ)
    bytes = 0;
  text[bytes < size ? bytes : size - 1] = 0;
  RegCloseKey(key);
}

}  // namespace

void MachineOwnerNames(char* owner, size_t ownerSize, char* organisation, size_t organisationSize) {
  ReadSystemName("RegisteredOwner", owner, ownerSize);
  ReadSystemName("RegisteredOrganization", organisation, organisationSize);
}
