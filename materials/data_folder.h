// The plug-in's data folder, "Glyph Motion 5" inside the settings folder, where the material
// buttons, gradients, textures and tiles keep their files. Paths use the settings folder's own
// separator, so they take the backslash form on Windows.
#pragma once

#include <cstddef>

constexpr size_t kDataPathSize = 261;  // 260 characters and the terminator
constexpr char kDataFolderName[] = "Glyph Motion 5";

// Writes the full path of `name` in the data folder to `path`, making the folder when it is
// missing. Returns 0 with `path` empty when there is no settings folder or the path doesn't fit.
int DataFilePath(const char* name, char* path, size_t size);
