// The 8-bit masks that text layers are made of: their grey colour table and a blank mask.
// Written apart from the layer loops and the text masks so that both build on it.
#pragma once

#include <cstdint>

#include "platform/memory.h"

// The grey colour table of every mask, 256 red, green, blue triples: entry i is i, i, i.
const uint8_t* GreyRamp();
// A new zeroed 8-bit mask with the grey table, or null.
MovableHandle CreateMask(int32_t width, int32_t height);
