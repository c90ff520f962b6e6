// Loads the plug-in library from an executable whose version resource is one case of the load
// gate. Usage: gate_probe_CASE DLL EXPECTED, EXPECTED 1 when the library should load, 0 when it
// should refuse. Exits with 0 when the outcome is the expected one.
#include <windows.h>

#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  HMODULE library = LoadLibraryA(argv[1]);
  int loaded = library != nullptr;
  printf("loaded=%d expected=%s error=%lu\n", loaded, argv[2], library ? 0ul : GetLastError());
  if (library) FreeLibrary(library);
  return loaded == atoi(argv[2]) ? 0 : 1;
}
