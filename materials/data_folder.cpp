// Joins names to the data folder. The folder is made on first use, since the settings folder
// that holds it may be new; a folder that can't be made shows up later as a file that won't open.
#include "materials/data_folder.h"

#include <cstdio>
#include <filesystem>
#include <string>
#include <system_error>

#include "documents/settings.h"

int DataFilePath(const char* name, char* path, size_t size) {
  if (!path || size == 0) return 0;
  path[0] = 0;
  char settings[kDataPathSize];
  if (!SettingsFolderPath("", settings, sizeof settings)) return 0;
  // The settings folder ends in its separator, which the data folder repeats.
  const char separator = settings[std::char_traits<char>::length(settings) - 1];
  const int n =
      std::snprintf(path, size, "%s%s%c%s", settings, kDataFolderName, separator, name ? name : "");
  if (n < 0 || static_cast<size_t>(n) >= size) {
    path[0] = 0;
    return 0;
  }
  std::error_code error;
  std::filesystem::create_directory(std::filesystem::path(std::string(settings) + kDataFolderName),
                                    error);
  return 1;
}
