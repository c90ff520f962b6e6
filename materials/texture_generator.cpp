// The texture generator table. The generators themselves are still to be written: until then
// every row fails, so a Texture fill fails rather than drawing a wrong picture.
#include "materials/texture_generator.h"

namespace {

MovableHandle NotYetGenerated(const TextureItem*) { return nullptr; }

}  // namespace

const TextureGeneratorRow TextureGeneratorTable[kTextureTypeCount] = {
    {"2-color fractal", NotYetGenerated}, {"3-color fractal", NotYetGenerated},
    {"4-color fractal", NotYetGenerated}, {"5-color fractal", NotYetGenerated},
    {"Craters", NotYetGenerated},         {"Perturbation", NotYetGenerated},
};

MovableHandle GenerateTexture(const TextureItem* item) {
  if (!item || item->TextureType < 0 || item->TextureType >= kTextureTypeCount) return nullptr;
  return TextureGeneratorTable[item->TextureType].generate(item);
}
