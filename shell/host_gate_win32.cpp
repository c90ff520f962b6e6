// Reads the version resource of the executable that loads the library for the load gate. The
// strings are copied into bounded buffers: the resource belongs to someone else.
#include <windows.h>

#include "platform/memory.h"
#include "shell/host_gate.h"

namespace {

// Copies the string value `key` of the version block into `out`; returns 0 when it is missing.
int QueryVersionString(void* block, const char* key, char* out, size_t capacity) {
  char* value = nullptr;
  UINT length = 0;
  if (!VerQueryValueA(block, key, reinterpret_cast<void**>(&value), &length) || !value) return 0;
  size_t count = length < capacity ? length : capacity - 1;
  memcpy(out, value, count);
  out[count] = 0;
  return 1;
}

}  // namespace

int HostGateAcceptsProcess() {
  char path[MAX_PATH + 1];
  DWORD pathLength = GetModuleFileNameA(nullptr, path, MAX_PATH);
  if (pathLength == 0 || pathLength >= MAX_PATH) return 1;
  path[pathLength] = 0;
  DWORD ignored = 0;
  DWORD size = GetFileVersionInfoSizeA(path, &ignored);
  if (size == 0) return 1;
  ScopedBlock block(MovableAlloc(size));
  ScopedLock bytes(block.handle);
  if (!bytes || !GetFileVersionInfoA(path, 0, size, bytes.bytes)) return 1;

  char fileVersion[64], companyName[128];
  int hasVersion = QueryVersionString(bytes.bytes, "\\StringFileInfo\\040904E4\\FileVersion",
                                      fileVersion, sizeof fileVersion);
  int hasCompany = QueryVersionString(bytes.bytes, "\\StringFileInfo\\040904E4\\CompanyName",
                                      companyName, sizeof companyName);
  return HostGateAccepts(hasVersion ? fileVersion : nullptr, hasCompany ? companyName : nullptr);
}
