// Animated GIF from an indexed host file: the file's palette as the global colour table, each
// frame with its delay (hundredths of a second), transparent index and disposal, the file's
// comment when it has one, and a loop count.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/host_session.h"

// Encodes `file` into `bytes`, repeating `loopCount` times (0: for ever). With `optimise`, when
// every picture shown covers the whole screen, each frame after the first holds only the rectangle
// that changed, its unchanged pixels marked transparent with an unused index when that is smaller;
// a decoder shows the same pictures either way. Returns 0, with the reason in `error`, when the
// file is not indexed (1 to 8 bits), has no frames or holds a damaged frame.
int EncodeGif(const HostFile* file, int32_t loopCount, std::vector<uint8_t>* bytes,
              std::string* error, int optimise = 1);
