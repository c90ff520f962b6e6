#include "tests/support/texture_scenes.h"

#include "materials/material.h"
#include "materials/texture_generator.h"

MovableHandle RenderTextureScene(int32_t type) {
  Material material;
  InitMaterial(&material);
  material.kind = kMaterialTexture;
  material.texture.TextureType = type;
  return MaterialFill(&material, kTextureSceneWidth, kTextureSceneHeight);
}

int TextureSceneNoiseIsDefault() {
  TextureItem item;
  InitTextureItem(&item);
  uint32_t seed;
  return PerturbationNoiseSeed(&seed) && seed == item.SeedValue[0];
}
