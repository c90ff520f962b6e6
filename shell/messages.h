// Messages to the user: texts from the string table and the two modal boxes that show them
// ("MessageBox" with one answer, "YesnoBox" with two). Failures are shown by callers, never by
// renderers or image operations. Texts are in the system's 8-bit code page.
#pragma once

#include <cstdint>

#include "platform/dialog.h"

// Ids of the string table.
enum MessageId : int32_t {
#define MESSAGE_TEXT(id, name, text) name = id,
#include "shell/message_list.inc"
#undef MESSAGE_TEXT
};

// Ids that end a box: OK, Cancel (also the close box), Yes, No.
enum MessageAnswer : int32_t {
  kAnswerOk = 1,
  kAnswerCancel = 2,
  kAnswerYes = 6,
  kAnswerNo = 7,
};

// The text shown when a string is missing from the table.
extern const char kMissingMessageText[];

// String `id` of the string table, in one shared 1024-byte buffer that the next call overwrites.
// A missing string gives kMissingMessageText. Never null.
const char* LoadMessage(int32_t id);

// Shows `text` in the modal box "MessageBox" owned by `window` (which may be null), then repaints
// `window`. Returns the id that ended the box, or 0 when no box could be shown.
int32_t ShowMessage(WindowHandle window, const char* text);

// As ShowMessage, in the box "YesnoBox". Returns kAnswerYes, kAnswerNo, kAnswerCancel when the
// box was dismissed, or 0 when no box could be shown.
int32_t AskYesNo(WindowHandle window, const char* text);

// Moves a top-level window to the middle of the screen, keeping its size.
void CentreWindow(WindowHandle window);

// The text of the last box shown or asked, "" before the first; for programs without a screen and
// for their tests.
const char* LastShownMessage();
// Without a screen, shown texts are also written to stderr unless turned off here; a program that
// reports failures in its own words turns it off. Not on Windows, where the boxes are shown.
void EchoShownMessages(int on);

// The portable half, shared by both platforms: the row of the list for `id`, or null; and the
// record of the last text shown.
const char* FindMessageText(int32_t id);
void RecordShownMessage(const char* text);
