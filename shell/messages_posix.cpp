// Message services for a program without a screen: texts come from the same list as the Windows
// string table; a box is not shown but its text is recorded and written to stderr, and a question
// counts as dismissed, so nothing is ever done on an answer no one gave.
#include "shell/messages.h"

#include <cstdio>
#include <cstring>

namespace {
char messageBuffer[1024];
int echo = 1;
}  // namespace

const char* LoadMessage(int32_t id) {
  const char* text = FindMessageText(id);
  if (!text) text = kMissingMessageText;
  snprintf(messageBuffer, sizeof messageBuffer, "%s", text);
  return messageBuffer;
}

int32_t ShowMessage(WindowHandle window, const char* text) {
  RecordShownMessage(text);
  if (echo) fprintf(stderr, "%s\n", LastShownMessage());
  return kAnswerOk;
}

int32_t AskYesNo(WindowHandle window, const char* text) {
  RecordShownMessage(text);
  if (echo) fprintf(stderr, "%s\n", LastShownMessage());
  return kAnswerCancel;
}

void EchoShownMessages(int on) {
  echo = on;
}

// Headless windows have no place on a screen.
void CentreWindow(WindowHandle window) {}
