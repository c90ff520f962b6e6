// Pictures that the Windows build writes under Wine and the native build reads back, to compare the
// two platforms. A file holds the whole Packed DIB block as it is in memory.
#pragma once

#include <string>

#include "platform/memory.h"

// Writes the block of `image` to `path`. Returns 1 or 0.
int WriteParityFile(const std::string& path, MovableHandle image);
// Reads a block written by WriteParityFile, or null.
MovableHandle ReadParityFile(const std::string& path);
