// The settings: 390 values in process-wide storage, described by one table of SettingEntry rows in
// file order, read from and written to "rfdplgm5.ini" by one pass each. Integers are i32, strings
// are char[261]; controls hold the address of their setting (see controls/value_controls.h).
// The storage starts on the defaults and keeps whatever the last load or control put there.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>

constexpr int32_t kSettingCount = 390;
constexpr size_t kSettingTextSize = 261;  // 260 characters and the terminator

// SettingEntry.flags
constexpr uint32_t kSettingBoolean = 0x0001;
constexpr uint32_t kSettingString = 0x0002;
constexpr uint32_t kSettingInteger = 0x0004;
constexpr uint32_t kSettingAuxGroup = 0x0010;
constexpr uint32_t kSettingNeverRead = 0x0100;
constexpr uint32_t kSettingScrambled = 0x1000;
constexpr uint32_t kSettingAuxFlag = 0x8000;

struct SettingEntry {
  const char* key;  // the name in the file
  void* value;      // int32_t*, or char[kSettingTextSize] for a string
  uint32_t flags;
  uint32_t aux;  // 100..103 on four rows, else 0
  uint64_t reserved;
};
static_assert(sizeof(SettingEntry) == 32, "a setting row is 32 bytes");

// Filled while the library loads; rows keep their order and their value addresses.
extern SettingEntry SettingTable[kSettingCount];

// Reads the file over the current values. Holding Shift (SettingsShiftHeld) limits the read to
// the scrambled rows, so the program starts on its current values. Nothing is reported.
void LoadSettings();
// The load's reading of an open file, for LoadSettings and the fuzz target.
void LoadSettingsFromFile(std::FILE* file, int shift);
// Writes every row, after keeping the old file as "<name>.bak". A file that can't be made is
// passed over silently.
void SaveSettings();

// Writes the full path of `name` in the settings folder to `path`. Returns 0 when there is no such
// folder or the path doesn't fit, with `path` empty.
int SettingsFolderPath(const char* name, char* path, size_t size);
// Points the settings folder elsewhere (a path ending in a separator), or back to the platform's
// folder with null. For tests and the command-line renderer.
void SetSettingsFolder(const char* folder);
// The platform's settings folder, ending in a separator; 0 when there is none.
int PlatformSettingsFolder(char* folder, size_t size);
// Nonzero while the user holds Shift (on systems without a keyboard state, while the environment
// variable GM5_SHIFT is set to a nonzero number).
int SettingsShiftHeld();

// The first row whose key is exactly `key`, or null.
const SettingEntry* FindSetting(const char* key);
// The value of an integer row, or null; the buffer of a string row, or null.
int32_t* SettingInteger(const char* key);
char* SettingString(const char* key);
// Puts every value back to its default.
void ResetSettings();

// The scrambling of the registration rows. `encode` nonzero scrambles in place for writing, zero
// undoes it after reading. Until one is installed the rows are kept as they stand.
typedef void (*SettingScrambler)(char* text, int encode);
void SetSettingScrambler(SettingScrambler scrambler);

// Copies `path` to `path` + ".bak", after deleting an old backup. Returns 0 when there is nothing
// to back up or the copy fails (the old backup is then gone either way).
int BackUpFile(const char* path);

// Parses a decimal integer as the runtime's atoi does: leading white space, a sign, digits, and
// anything after them ignored. Values beyond the 32-bit range saturate, as a 32-bit strtol does.
int32_t ParseAtoi(const char* text);
