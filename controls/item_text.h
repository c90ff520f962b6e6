// A control's text as a number, the way GetDlgItemInt and SetDlgItemInt read and write it, and the
// word that starts a document line. Shared by every control kind.
#pragma once

#include <cstdint>

#include "platform/dialog.h"

// Nonzero when the line's first six characters are `tag`, ignoring case.
int TagMatches(const char* line, const char* tag);

// The text as GetDlgItemInt translates it: leading white space, a minus sign when `isSigned`, and
// decimal digits up to the first other character. No digits, or a value beyond the type's range,
// gives 0 with *translated 0.
uint32_t ParseDlgItemInt(const char* text, int isSigned, int* translated);
uint32_t GetDialogItemInt(WindowHandle dialog, int32_t id, int* translated, int isSigned);
void SetDialogItemInt(WindowHandle dialog, int32_t id, uint32_t value, int isSigned);
