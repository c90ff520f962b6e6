// The built plug-in library as a file and as a loaded module: its export and import tables, the
// description it gives, and the refusal of a host that is too old.
#include <windows.h>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "host/bmp_file.h"
#include "shell/host_interface.h"
#include "tests/win32/win32_test_support.h"

namespace {

std::string PluginPath() {
  return BuildPath(GM5_PLUGIN_PATH);
}

struct PeFile {
  std::vector<uint8_t> bytes;
  const IMAGE_NT_HEADERS64* nt = nullptr;

  // The file offset of a relative virtual address, or 0 when no section holds it.
  size_t Offset(uint32_t rva) const {
    const IMAGE_SECTION_HEADER* section = IMAGE_FIRST_SECTION(nt);
    for (int i = 0; i < nt->FileHeader.NumberOfSections; ++i, ++section) {
      uint32_t start = section->VirtualAddress;
      if (rva >= start && rva < start + section->SizeOfRawData)
        return section->PointerToRawData + (rva - start);
    }
    return 0;
  }
  const char* Text(uint32_t rva) const {
    return reinterpret_cast<const char*>(bytes.data() + Offset(rva));
  }
  const IMAGE_DATA_DIRECTORY& Directory(int index) const {
    return nt->OptionalHeader.DataDirectory[index];
  }
};

bool ReadPe(PeFile* pe) {
  pe->bytes = ReadWholeFile(PluginPath().c_str());
  if (pe->bytes.size() < sizeof(IMAGE_DOS_HEADER)) return false;
  auto dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(pe->bytes.data());
  pe->nt = reinterpret_cast<const IMAGE_NT_HEADERS64*>(pe->bytes.data() + dos->e_lfanew);
  return pe->nt->Signature == IMAGE_NT_SIGNATURE &&
         pe->nt->FileHeader.Machine == IMAGE_FILE_MACHINE_AMD64;
}

std::string Lower(std::string text) {
  for (char& c : text) c = static_cast<char>(tolower(static_cast<unsigned char>(c)));
  return text;
}

}  // namespace

TEST(PluginLibraryFile, ExportsExactlyTheThreeEntryPoints) {
  PeFile pe;
  ASSERT_TRUE(ReadPe(&pe)) << PluginPath();
  const IMAGE_DATA_DIRECTORY& directory = pe.Directory(IMAGE_DIRECTORY_ENTRY_EXPORT);
  ASSERT_NE(directory.VirtualAddress, 0u);
  auto exports = reinterpret_cast<const IMAGE_EXPORT_DIRECTORY*>(
      pe.bytes.data() + pe.Offset(directory.VirtualAddress));
  EXPECT_EQ(exports->NumberOfFunctions, 3u);
  auto names =
      reinterpret_cast<const uint32_t*>(pe.bytes.data() + pe.Offset(exports->AddressOfNames));
  std::set<std::string> found;
  for (uint32_t i = 0; i < exports->NumberOfNames; ++i) found.insert(pe.Text(names[i]));
  EXPECT_EQ(found,
            (std::set<std::string>{"DllMain", "PLUGIN16DoBuild", "PLUGIN16GetPluginParams"}));
}

TEST(PluginLibraryFile, ImportsOnlySystemLibraries) {
  static const std::set<std::string> kSystem = {
      "kernel32.dll", "user32.dll",  "gdi32.dll",   "gdiplus.dll", "comctl32.dll",
      "comdlg32.dll", "shell32.dll", "version.dll", "ole32.dll",   "oleaut32.dll",
      "advapi32.dll", "msvcrt.dll",  "shlwapi.dll", "msimg32.dll", "uxtheme.dll"};
  PeFile pe;
  ASSERT_TRUE(ReadPe(&pe));
  const IMAGE_DATA_DIRECTORY& directory = pe.Directory(IMAGE_DIRECTORY_ENTRY_IMPORT);
  auto entry = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(
      pe.bytes.data() + pe.Offset(directory.VirtualAddress));
  int count = 0;
  for (; entry->Name; ++entry, ++count)
    EXPECT_TRUE(kSystem.count(Lower(pe.Text(entry->Name)))) << pe.Text(entry->Name);
  EXPECT_GE(count, 3);  // kernel32, user32 and gdi32 at least
}

TEST(PluginLibraryModule, LoadsWithoutVersionResourceAndDescribesItself) {
  // This test program has no version resource: the gate lets the library load.
  HMODULE library = LoadLibraryA(PluginPath().c_str());
  ASSERT_NE(library, nullptr) << GetLastError();
  auto getParams = reinterpret_cast<int (*)(PluginParams*)>(
      reinterpret_cast<void*>(GetProcAddress(library, "PLUGIN16GetPluginParams")));
  auto doBuild = reinterpret_cast<int (*)(HWND, HostRecord*)>(
      reinterpret_cast<void*>(GetProcAddress(library, "PLUGIN16DoBuild")));
  ASSERT_TRUE(getParams && doBuild);

  // The fields themselves are checked on the portable side; here only that the export fills them.
  PluginParams params = {};
  params.size = sizeof params;
  EXPECT_EQ(getParams(&params), 1);
  EXPECT_STREQ(params.name, "Glyph Motion #5");
  FreeLibrary(library);
}
