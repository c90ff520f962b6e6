// The six texture generators and their table. Each takes a TextureItem and returns a new 24-bit
// Packed DIB of the size in its `rect` (right - left by bottom - top), or null.
#pragma once

#include "materials/texture_item.h"
#include "platform/memory.h"

using TextureGenerator = MovableHandle (*)(const TextureItem* item);

struct TextureGeneratorRow {
  const char* name;  // as the Type combo shows it
  TextureGenerator generate;
};

// Indexed by TextureType.
extern const TextureGeneratorRow TextureGeneratorTable[kTextureTypeCount];

// The generator of the item's type; null when the type is outside the table.
MovableHandle GenerateTexture(const TextureItem* item);
