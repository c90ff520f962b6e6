// Shared pieces of the POSIX drawing layer: the text path modes, drawn with Cairo on a FreeType
// face's outlines.
#pragma once

#include "platform/memory.h"
#include "text/drawing_layer.h"

// Text modes 3 and 4 on a bitmap of the request's measured size; null when it cannot be made.
MovableHandle DrawTextPath(const DrawRequest* request);
