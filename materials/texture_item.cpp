// The defaults of a new texture record.
#include "materials/texture_item.h"

#include <cstring>

void InitTextureItem(TextureItem* item) {
  std::memset(item, 0, sizeof(*item));
  item->TextureType = kTextureFractal2;
  item->reserved40 = 1;
  item->hour = 12.0f;
  item->inclination = 60.0f;
  item->iceLevel = 2.0f;
  item->glaciers = 3.1f;
  item->starFraction = 100.0f;
  item->starColour = 650.0f;
  item->MatrixSize = 64;
  const uint32_t fore[kTextureLayers] = {0xFFFFFF, 0xFFE0E0, 0xFFA0A0, 0xFF8080, 0xFF6060};
  for (int k = 0; k < kTextureLayers; ++k) {
    item->ForeColour[k] = fore[k];
    item->Power[k] = 0.75f;
    item->SeedValue[k] = 10000u + static_cast<uint32_t>(k);
    item->Dimension[k] = 2.15f;
  }
  item->BackColour = 0xFF0000;
  item->CreaterCount = 5000;
  item->CreaterDepth = 1.5f;
  const float knots[4] = {0.0f, 0.33f, 0.67f, 1.0f};
  for (int i = 0; i < 4; ++i) {
    item->ColorRed[i] = knots[i];
    item->ColorGreen[i] = knots[i];
    item->ColorBlue[i] = knots[i];
  }
  item->BubbleCount = 64;
  item->BubbleSize = 4;
  item->BubblePower = 0.25f;
  item->PerturbationPower = 1.0f;
  item->BubbleShape = kBubbleEllipse;
}
