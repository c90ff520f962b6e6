// The texture generator table.
#include "materials/texture_generator.h"

const TextureGeneratorRow TextureGeneratorTable[kTextureTypeCount] = {
    {"2-color fractal", GenerateFractal2}, {"3-color fractal", GenerateFractal3},
    {"4-color fractal", GenerateFractal4}, {"5-color fractal", GenerateFractal5},
    {"Craters", GenerateCraters},          {"Perturbation", GeneratePerturbation},
};

MovableHandle GenerateTexture(const TextureItem* item) {
  if (!item || item->TextureType < 0 || item->TextureType >= kTextureTypeCount) return nullptr;
  return TextureGeneratorTable[item->TextureType].generate(item);
}
