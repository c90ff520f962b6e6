// A build's memory of its texture fills. A frame loop that renders every frame through the common
// renderer asks for the same Texture fills (background, fill, shadow) at the same size each frame;
// the cache, owned by that loop and released when it ends, generates each once and hands out
// copies. A copy is exactly what MaterialFill would return, and the runtime generator is left as
// generating again would have left it, so no picture of the build changes. Only Texture fills are
// kept: the other kinds cost no more to make than to copy.
#pragma once

#include <cstdint>

#include "materials/material.h"
#include "platform/memory.h"

constexpr int32_t kFillCacheEntries = 3;  // the three materials of a frame

struct FillCacheEntry {
  TextureItem texture;  // the record, its `rect` zeroed: with the size, the key
  int32_t width, height;
  MovableHandle image;   // owned by the cache; null for an empty entry
  int32_t reseeded;      // whether generating it reseeded the runtime generator
  uint32_t randomState;  // the generator's state that generating it left
};

// Zero it to start; ReleaseFillCache frees its pictures.
struct FillCache {
  FillCacheEntry entries[kFillCacheEntries];
  int32_t next;  // the entry the next new fill replaces
};

// MaterialFill through the cache: a new picture owned by the caller, or null. With a null cache,
// or a kind other than Texture, it is MaterialFill itself.
MovableHandle CachedMaterialFill(FillCache* cache, Material* material, int32_t width,
                                 int32_t height);
// Frees every picture of the cache and empties it.
void ReleaseFillCache(FillCache* cache);

// A cache for the length of a scope.
struct ScopedFillCache {
  FillCache cache{};
  ScopedFillCache() = default;
  ~ScopedFillCache() { ReleaseFillCache(&cache); }
  ScopedFillCache(const ScopedFillCache&) = delete;
  ScopedFillCache& operator=(const ScopedFillCache&) = delete;
};
