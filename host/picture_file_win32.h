// The reference host's reading of picture files for HostOpLoadImageFile: BMP files as they stand,
// and PNG, GIF (its first frame), JPEG and the system's other formats through GDI+ as a 24-bit
// Packed DIB. The caller owns the block it gets.
#pragma once

#include "platform/memory.h"

// A new Packed DIB of the picture at `path`, or null when it can't be read.
MovableHandle ReadHostPictureFile(const char* path);
