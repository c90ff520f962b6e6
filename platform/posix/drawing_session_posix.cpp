// Start-up and shutdown of the drawing layer on POSIX. FreeType, fontconfig and Cairo need no
// process-wide session for what the layer does: libraries are opened where fonts are first used.
// The token is nonzero so that callers can tell a started layer from a zeroed request.
#include "text/drawing_layer.h"

int DrawingStartup(uint64_t* token) {
  *token = 1;
  return 1;
}

int DrawingShutdown(uint64_t token) { return token != 0; }
