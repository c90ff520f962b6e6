// The wait cursor on Windows: the system's IDC_WAIT, set with SetCursor, which returns the cursor
// it replaces. Shared cursors need no freeing.
#include <windows.h>

#include "platform/cursor.h"

void* ShowWaitCursor() {
  return SetCursor(LoadCursorA(nullptr, IDC_WAIT));
}

void RestoreCursor(void* previous) {
  SetCursor(static_cast<HCURSOR>(previous));
}
