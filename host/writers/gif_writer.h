// Animated GIF from an indexed host file: the file's palette as the global colour table, each
// frame with its delay (hundredths of a second), transparent index and disposal, the file's
// comment when it has one, and a loop that repeats forever.
#pragma once

#include <string>

#include "host/host_session.h"

// Writes `file` to `path`. Returns 0, with `error` set, when the file is not indexed (1 to 8 bits),
// has no frames, holds a damaged frame, or the file cannot be written.
int WriteGifFile(const HostFile* file, const std::string& path, std::string* error);
