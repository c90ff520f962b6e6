// The fill cache: a few entries replaced in turn, compared by texture record and size.
#include "materials/fill_cache.h"

#include <algorithm>
#include <cstring>

#include "materials/texture_generator.h"
#include "shell/crt_random.h"
#include "shell/packed_dib.h"

namespace {

TextureItem KeyOf(const TextureItem& texture) {
  TextureItem key = texture;
  std::memset(key.rect, 0, sizeof(key.rect));
  return key;
}

FillCacheEntry* Find(FillCache* cache, const TextureItem& key, int32_t width, int32_t height) {
  for (FillCacheEntry& e : cache->entries) {
    if (e.image && e.width == width && e.height == height &&
        std::memcmp(&e.texture, &key, sizeof(key)) == 0)
      return &e;
  }
  return nullptr;
}

}  // namespace

MovableHandle CachedMaterialFill(FillCache* cache, Material* material, int32_t width,
                                 int32_t height) {
  if (!cache || !material || material->kind != kMaterialTexture)
    return MaterialFill(material, width, height);
  const TextureItem key = KeyOf(material->texture);
  if (const FillCacheEntry* hit = Find(cache, key, width, height)) {
    MovableHandle copy = CopyMovableBlock(hit->image);
    if (!copy) return nullptr;
    // What the fill writes into the record, and what generating leaves in the generator.
    const int32_t side = std::max(width, height);
    const int32_t rect[4] = {0, 0, side, side};
    std::memcpy(material->texture.rect, rect, sizeof(rect));
    if (hit->reseeded) crt::srand(hit->randomState);
    return copy;
  }

  uint32_t seed;
  const int tablesBefore = PerturbationNoiseSeed(&seed);
  const uint32_t seedingsBefore = crt::seedings();
  MovableHandle image = MaterialFill(material, width, height);
  if (!image) return nullptr;
  // The fill that made Perturbation's noise tables drew more numbers than any later one will:
  // it is not kept, so that the generator is left as a later fill leaves it.
  if (PerturbationNoiseSeed(&seed) != tablesBefore) return image;
  const int32_t reseeded = crt::seedings() != seedingsBefore;
  const uint32_t state = crt::state();
  MovableHandle kept = CopyMovableBlock(image);
  if (!kept) return image;  // the fill stands; only the saving is lost

  FillCacheEntry& e = cache->entries[cache->next];
  cache->next = (cache->next + 1) % kFillCacheEntries;
  MovableFree(e.image);
  e.texture = key;
  e.width = width;
  e.height = height;
  e.image = kept;
  e.reseeded = reseeded;
  e.randomState = state;
  return image;
}

void ReleaseFillCache(FillCache* cache) {
  if (!cache) return;
  for (FillCacheEntry& e : cache->entries) MovableFree(e.image);
  std::memset(cache, 0, sizeof(*cache));
}
