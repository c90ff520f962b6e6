// The colour that stands for no picture, answered alike by every page whose Background is one
// control: the grey alpha background when both alpha switches are on, else that control's colour.
#pragma once

#include <cstdint>

#include "platform/dialog.h"

// -1 for a nonzero `mode`. With 0: AlphaGreyBack when Alpha transparency and Alpha background are
// both checked; else the colour of `backgroundId`, a colour button's value or a material button's
// Material colour; -1 when it is neither or holds no record.
int32_t PageBackgroundKeyColour(WindowHandle dialog, int32_t mode, int32_t backgroundId);
