// The settings as gm5 sees them: option texts into the table, and the table printed with defaults.
#include "cli/settings_command.h"

#include <sys/stat.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <set>
#include <vector>

#include "cli/colour_text.h"
#include "documents/settings.h"
#include "text/text_mask.h"

namespace {

int IsText(const SettingEntry& row) {
  return (row.flags & kSettingString) && !(row.flags & (kSettingBoolean | kSettingInteger));
}

std::string ValueText(const SettingEntry& row) {
  if (IsText(row)) return std::string(static_cast<const char*>(row.value));
  return std::to_string(*static_cast<const int32_t*>(row.value));
}

// Every row's value as bytes, to put the table back after reading its defaults.
std::vector<std::string> SnapshotValues() {
  std::vector<std::string> values;
  for (const SettingEntry& row : SettingTable)
    values.emplace_back(static_cast<const char*>(row.value),
                        IsText(row) ? kSettingTextSize : sizeof(int32_t));
  return values;
}

void RestoreValues(const std::vector<std::string>& values) {
  for (size_t i = 0; i < values.size(); ++i)
    memcpy(SettingTable[i].value, values[i].data(), values[i].size());
}

}  // namespace

int ApplySettingText(const std::string& key, const std::string& value, std::string* error) {
  const SettingEntry* row = FindSetting(key.c_str());
  if (!row || (row->flags & kSettingScrambled)) {
    *error = "unknown setting: " + key;
    return 0;
  }
  if (IsText(*row)) {
    if (value.size() >= kSettingTextSize) {
      *error = "bad value for " + key + ": longer than 260 characters";
      return 0;
    }
    memcpy(row->value, value.c_str(), value.size() + 1);
    return 1;
  }
  // Colour settings take every colour form; their keys name a colour, or the alpha background.
  const std::string name = key;
  uint32_t colour = 0;
  if ((name.find("Color") != std::string::npos || name == "AlphaGreyBack") &&
      !(row->flags & kSettingBoolean) && name.find("Enable") == std::string::npos) {
    if (!ParseColourText(value, &colour)) {
      *error = "bad value for " + key + ": " + value + " (a colour: " + kColourForms + ")";
      return 0;
    }
    *static_cast<int32_t*>(row->value) = static_cast<int32_t>(colour);
    return 1;
  }
  errno = 0;
  char* end = nullptr;
  long long n = value.empty() ? 0 : strtoll(value.c_str(), &end, 10);
  int ok = !value.empty() && !errno && !*end && n >= INT32_MIN && n <= INT32_MAX;
  if (ok && (row->flags & kSettingBoolean)) ok = n == 0 || n == 1;
  if (!ok) {
    *error = "bad value for " + key + ": " + value;
    return 0;
  }
  *static_cast<int32_t*>(row->value) = static_cast<int32_t>(n);
  return 1;
}

int PrepareSettings(const CommandLine& line, std::string* error) {
  if (line.defaults) {
    ResetSettings();
  } else {
    // Only a regular file is read: a folder, a pipe or a device would hang or say nothing.
    char path[kSettingTextSize];
    struct stat info;
    if (SettingsFolderPath("rfdplgm5.ini", path, sizeof path) && stat(path, &info) == 0 &&
        !S_ISREG(info.st_mode)) {
      *error = std::string("cannot read the configuration ") + path + ": not a regular file";
      return 0;
    }
    LoadSettings();
  }
  for (const auto& setting : line.settings)
    if (!ApplySettingText(setting.first, setting.second, error)) return 0;
  // Text measurement reads its one setting from here, as the plug-in's dialog start gives it.
  SetAccentCompensation(*SettingInteger("AccentCompensation") != 0);
  return 1;
}

int PrintSettings(FILE* out, const std::string& key, std::string* error) {
  if (!key.empty()) {
    const SettingEntry* row = FindSetting(key.c_str());
    if (!row || (row->flags & kSettingScrambled)) {
      *error = "unknown setting: " + key;
      return 0;
    }
  }
  // The defaults are what a reset leaves; the values are put back afterwards.
  const std::vector<std::string> current = SnapshotValues();
  ResetSettings();
  std::vector<std::string> defaults;
  for (const SettingEntry& row : SettingTable) defaults.push_back(ValueText(row));
  RestoreValues(current);
  std::set<std::string> shown;  // a key on several rows is one setting
  for (size_t i = 0; i < static_cast<size_t>(kSettingCount); ++i) {
    const SettingEntry& row = SettingTable[i];
    if (!row.key || (row.flags & kSettingScrambled) || !shown.insert(row.key).second) continue;
    if (!key.empty() && key != row.key) continue;
    fprintf(out, "%s=%s (default %s)\n", row.key, ValueText(row).c_str(), defaults[i].c_str());
  }
  return 1;
}
