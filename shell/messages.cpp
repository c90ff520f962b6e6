// The portable half of the message services: the string table as data, and the record of the
// last text shown, which both platforms keep.
#include "shell/messages.h"

#include <cstddef>
#include <cstring>

const char kMissingMessageText[] = "String table error - this application may be damaged";

namespace {

struct MessageRow {
  int32_t id;
  const char* text;
};

const MessageRow kMessageRows[] = {
#define MESSAGE_TEXT(id, name, text) {id, text},
#include "shell/message_list.inc"
#undef MESSAGE_TEXT
};

char lastShown[1024];

}  // namespace

const char* FindMessageText(int32_t id) {
  for (const MessageRow& row : kMessageRows) {
    if (row.id == id) return row.text;
  }
  return nullptr;
}

void RecordShownMessage(const char* text) {
  if (!text) text = "";
  size_t length = strnlen(text, sizeof lastShown - 1);
  memcpy(lastShown, text, length);
  lastShown[length] = 0;
}

const char* LastShownMessage() {
  return lastShown;
}
