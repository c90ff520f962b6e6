// The built plug-in library as a file: it exports exactly its three entry points and imports only
// system libraries. Loading it and calling the exports is left to the reference host's tests.
#include <windows.h>

#include <cctype>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "host/bmp_file.h"
#include "tests/win32/win32_test_support.h"

TEST(PluginLibraryFile, ExportsTheThreeEntryPointsAndImportsOnlySystemLibraries) {
  const std::vector<uint8_t> bytes = ReadWholeFile(BuildPath(GM5_PLUGIN_PATH).c_str());
  ASSERT_GE(bytes.size(), sizeof(IMAGE_DOS_HEADER));
  auto nt = reinterpret_cast<const IMAGE_NT_HEADERS64*>(
      bytes.data() + reinterpret_cast<const IMAGE_DOS_HEADER*>(bytes.data())->e_lfanew);
  ASSERT_EQ(nt->Signature, static_cast<DWORD>(IMAGE_NT_SIGNATURE));
  ASSERT_EQ(nt->FileHeader.Machine, IMAGE_FILE_MACHINE_AMD64);
  // The bytes at a relative virtual address, found through the section that holds it.
  auto at = [&](uint32_t rva) -> const uint8_t* {
    const IMAGE_SECTION_HEADER* section = IMAGE_FIRST_SECTION(nt);
    for (int i = 0; i < nt->FileHeader.NumberOfSections; ++i, ++section)
      if (rva >= section->VirtualAddress && rva < section->VirtualAddress + section->SizeOfRawData)
        return bytes.data() + section->PointerToRawData + (rva - section->VirtualAddress);
    return bytes.data();
  };
  auto text = [&](uint32_t rva) { return std::string(reinterpret_cast<const char*>(at(rva))); };
  const IMAGE_DATA_DIRECTORY* directories = nt->OptionalHeader.DataDirectory;

  ASSERT_NE(directories[IMAGE_DIRECTORY_ENTRY_EXPORT].VirtualAddress, 0u);
  auto exports = reinterpret_cast<const IMAGE_EXPORT_DIRECTORY*>(
      at(directories[IMAGE_DIRECTORY_ENTRY_EXPORT].VirtualAddress));
  EXPECT_EQ(exports->NumberOfFunctions, 3u);
  auto names = reinterpret_cast<const uint32_t*>(at(exports->AddressOfNames));
  std::set<std::string> found;
  for (uint32_t i = 0; i < exports->NumberOfNames; ++i) found.insert(text(names[i]));
  EXPECT_EQ(found,
            (std::set<std::string>{"DllMain", "PLUGIN16DoBuild", "PLUGIN16GetPluginParams"}));

  static const std::set<std::string> kSystem = {
      "kernel32.dll", "user32.dll",  "gdi32.dll",   "gdiplus.dll", "comctl32.dll",
      "comdlg32.dll", "shell32.dll", "version.dll", "ole32.dll",   "oleaut32.dll",
      "advapi32.dll", "msvcrt.dll",  "shlwapi.dll", "msimg32.dll", "uxtheme.dll"};
  auto entry = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(
      at(directories[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress));
  int count = 0;
  for (; entry->Name; ++entry, ++count) {
    std::string name = text(entry->Name);
    for (char& c : name) c = static_cast<char>(tolower(static_cast<unsigned char>(c)));
    EXPECT_TRUE(kSystem.count(name)) << name;
  }
  EXPECT_GE(count, 3);  // kernel32, user32 and gdi32 at least
}

// The palette files are resources of the library, byte for byte the copies kept in the sources.
TEST(PluginLibraryFile, CarriesThePaletteResources) {
  HMODULE plugin = LoadLibraryExA(GM5_PLUGIN_PATH, nullptr, LOAD_LIBRARY_AS_DATAFILE);
  ASSERT_NE(plugin, nullptr);
  for (const char* name : {"PALETTE216", "PALETTE256G"}) {
    HRSRC found = FindResourceA(plugin, name, MAKEINTRESOURCEA(10));  // RT_RCDATA
    ASSERT_NE(found, nullptr) << name;
    HGLOBAL loaded = LoadResource(plugin, found);
    ASSERT_NE(loaded, nullptr) << name;
    const uint8_t* bytes = static_cast<const uint8_t*>(LockResource(loaded));
    const std::vector<uint8_t> kept = ReadWholeFile(
        BuildPath((std::string(GM5_SOURCE_DIR "/resources/") + name + ".bin").c_str()).c_str());
    ASSERT_EQ(kept.size(), 853u) << name;
    EXPECT_EQ(std::vector<uint8_t>(bytes, bytes + SizeofResource(plugin, found)), kept) << name;
  }
  FreeLibrary(plugin);
}
