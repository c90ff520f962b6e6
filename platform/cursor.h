// The cursor port: the wait cursor shown over a long piece of work, and the cursor it replaced
// given back afterwards. On Windows this is the shared arrow-and-hourglass cursor; systems
// without a pointer do nothing. WaitCursor pairs the two for the length of a scope.
#pragma once

// Shows the wait cursor and returns the cursor that was showing (may be null).
void* ShowWaitCursor();
// Puts back a cursor returned by ShowWaitCursor.
void RestoreCursor(void* previous);

struct WaitCursor {
  void* previous;
  WaitCursor() : previous(ShowWaitCursor()) {}
  ~WaitCursor() { RestoreCursor(previous); }
  WaitCursor(const WaitCursor&) = delete;
  WaitCursor& operator=(const WaitCursor&) = delete;
};
