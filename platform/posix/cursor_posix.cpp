// The wait cursor without a window system: there is no pointer to change.
#include "platform/cursor.h"

void* ShowWaitCursor() {
  return nullptr;
}

void RestoreCursor(void*) {}
