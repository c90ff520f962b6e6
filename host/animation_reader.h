// The reference host's reading of the picture file named in a HostOpOpenAnimation request, into
// composed frames. On Windows GDI+ reads it: every frame of an animated GIF with its delay, or the
// one picture of a PNG, BMP or JPEG file; transparent pixels show white. Elsewhere the host reads
// BMP files only, as one frame: gm5 reads animations itself before its session is asked.
#pragma once

#include "host/animation_block.h"

// Returns 1 with the frames in `out`, or 0 when the file can't be read, holds no frame or is too
// large.
int ReadHostAnimationFile(const char* path, ComposedAnimation* out);
