// A control's text as a number, the way GetDlgItemInt and SetDlgItemInt read and write it, and the
// word that starts a document line.
#include "controls/item_text.h"

#include <cctype>
#include <cstdio>

int TagMatches(const char* line, const char* tag) {
  if (!line || !tag) return 0;
  for (int i = 0; i < 6; ++i) {
    if (!line[i]) return 0;
    if (std::toupper(static_cast<unsigned char>(line[i])) !=
        std::toupper(static_cast<unsigned char>(tag[i])))
      return 0;
  }
  return 1;
}

uint32_t ParseDlgItemInt(const char* text, int isSigned, int* translated) {
  if (translated) *translated = 0;
  if (!text) return 0;
  const unsigned char* p = reinterpret_cast<const unsigned char*>(text);
  while (*p == ' ' || (*p >= '\t' && *p <= '\r')) ++p;
  int negative = 0;
  if (isSigned && *p == '-') {
    negative = 1;
    ++p;
  }
  if (*p < '0' || *p > '9') return 0;
  uint64_t value = 0;
  for (; *p >= '0' && *p <= '9'; ++p) {
    value = value * 10 + (*p - '0');
    if (value > UINT64_C(0xFFFFFFFF)) return 0;
  }
  if (isSigned) {
    if (negative ? value > UINT64_C(0x80000000) : value > UINT64_C(0x7FFFFFFF)) return 0;
    if (translated) *translated = 1;
    return static_cast<uint32_t>(negative ? -static_cast<int64_t>(value)
                                          : static_cast<int64_t>(value));
  }
  if (translated) *translated = 1;
  return static_cast<uint32_t>(value);
}

uint32_t GetDialogItemInt(WindowHandle dialog, int32_t id, int* translated, int isSigned) {
  char text[64] = "";
  WindowHandle control = DialogItem(dialog, id);
  if (!control) {
    if (translated) *translated = 0;
    return 0;
  }
  DialogGetText(control, text, sizeof text);
  return ParseDlgItemInt(text, isSigned, translated);
}

void SetDialogItemInt(WindowHandle dialog, int32_t id, uint32_t value, int isSigned) {
  char text[16];
  if (isSigned)
    std::snprintf(text, sizeof text, "%d", static_cast<int32_t>(value));
  else
    std::snprintf(text, sizeof text, "%u", value);
  DialogSetText(DialogItem(dialog, id), text);
}
