// The material record's defaults and MaterialFill. A fill allocates the result first, renders the
// kind's source image, then copies it pixel by pixel so that any source depth becomes 24 bits.
// Nothing is cached: every call renders anew.
#include "materials/material.h"

#include <algorithm>
#include <cstring>

#include "materials/texture_generator.h"
#include "materials/tile.h"
#include "shell/packed_dib.h"
#include "text/image_copy.h"

void InitMaterial(Material* material) {
  std::memset(material, 0, sizeof(*material));
  std::memcpy(material->magic, "COBLCMAT", 8);
  material->size = kMaterialSize;
  material->version = kMaterialVersion;
  material->solidColour = 0x808080;

  GradientSpec& g = material->gradient;
  g.type = kGradientLinear;
  g.startColour = 0x404040;
  g.endColour = 0xC0C0C0;
  g.midpoint = 50;
  g.twoColour = 1;
  InitFountainGradient(&material->fountain, 2);
  InitTextureItem(&material->texture);
  material->kind = kMaterialSimple;
}

void FreeMaterialImages(Material* material) {
  MovableFree(material->preview);
  MovableFree(material->tileImage);
  material->preview = nullptr;
  material->tileImage = nullptr;
}

MovableHandle CentredCrop(MovableHandle square, int32_t width, int32_t height) {
  int32_t side;
  {
    ScopedLock source(square);
    if (!source) return nullptr;
    side = reinterpret_cast<const BitmapInfoHeader*>(source.bytes)->biWidth;
  }
  return CropImage(square, std::max((side - width) / 2, 0), std::max((side - height) / 2, 0), width,
                   height);
}

MovableHandle MaterialFill(Material* material, int32_t width, int32_t height) {
  if (!material) return nullptr;
  ScopedBlock image(CreatePackedDib(width, height, nullptr, 24));
  if (!image.handle) return nullptr;

  MovableHandle source = nullptr;
  switch (material->kind) {
    case kMaterialSimple: {
      ScopedLock pixels(image.handle);
      if (!pixels) return nullptr;
      FillRows24(pixels.bytes, material->solidColour);
      return image.Release();
    }
    case kMaterialGradient:
      source = MakeGradientImage(width, height, &material->gradient, &material->fountain);
      break;
    case kMaterialTexture: {
      // Textures are generated square at the larger side and cropped to the centre, so that two
      // fills of different aspect share their middle.
      const int32_t side = std::max(width, height);
      const int32_t rect[4] = {0, 0, side, side};
      std::memcpy(material->texture.rect, rect, sizeof(rect));
      source = GenerateTexture(&material->texture);
      if (source && width != height) {
        // Should the crop fail, the square picture serves as it stands: the copy below takes
        // its top-left part.
        MovableHandle cropped = CentredCrop(source, width, height);
        if (cropped) {
          MovableFree(source);
          source = cropped;
        }
      }
      break;
    }
    case kMaterialTile: {
      material->tileRect[0] = 0;
      material->tileRect[1] = 0;
      material->tileRect[2] = width;
      material->tileRect[3] = height;
      TileRef tile;
      GetMaterialTile(material, &tile);
      source = TileFill(&tile);
      break;
    }
    default:
      return image.Release();  // an unknown kind fills black rather than failing
  }
  ScopedBlock owner(source);
  if (!source) return nullptr;
  ScopedLock sourcePixels(source);
  if (!sourcePixels) return nullptr;
  CopyImageRect(image.handle, 0, 0, source, 0, 0, width, height);
  return image.Release();
}
