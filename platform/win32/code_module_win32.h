// The module that holds this code and its resources: the plug-in library when the engine runs
// inside a host, or the program itself when it is linked into a test or a tool.
#pragma once

#include <windows.h>

inline HMODULE CodeModule() {
  HMODULE module = nullptr;
  GetModuleHandleExA(
      GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
      reinterpret_cast<LPCSTR>(&CodeModule), &module);
  return module;
}
