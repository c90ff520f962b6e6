// The key colour answer that every effect gives, differing only in its page's Background control.
#pragma once

#include <cstdint>

#include "platform/dialog.h"

// -1 for a nonzero `mode`. Otherwise the grey alpha background when Alpha transparency and Alpha
// background are both checked; else the Background control `backgroundId`: a colour button's
// value, or a material button's Material colour (-1 when it holds no record).
int32_t PageKeyColour(WindowHandle dialog, int32_t mode, int32_t backgroundId);
