// The recipe of a texture: a packed record of 268 bytes from which a picture of any size is
// generated. It is kept byte for byte inside a Material and written field by field to texture
// files, so every offset is fixed. Colours are 0x00BBGGRR.
#pragma once

#include <cstddef>
#include <cstdint>

// Rows of the generator table.
enum TextureType : int32_t {
  kTextureFractal2 = 0,
  kTextureFractal3 = 1,
  kTextureFractal4 = 2,
  kTextureFractal5 = 3,
  kTextureCraters = 4,
  kTexturePerturbation = 5,
};
constexpr int32_t kTextureTypeCount = 6;

// Bubble shapes of the Perturbation generator.
enum TextureBubbleShape : int32_t {
  kBubbleEllipse = 0,
  kBubbleFuzzy = 1,
  kBubbleLuminous = 2,
  kBubbleSphere = 3,
};

constexpr int kTextureLayers = 5;  // the fifth entry is kept but no generator reads it

#pragma pack(push, 1)
struct TextureItem {
  int32_t TextureType;
  int32_t rect[4];  // left, top, right, bottom: the size to generate, set by the caller
  uint8_t reserved20[20];
  int32_t reserved40;  // set to 1, carried, never read
  uint8_t reserved44[4];
  float hour;  // the six fields from here to starColour are stored only: no picture uses them
  float inclination;
  float iceLevel;
  float glaciers;
  float starFraction;
  float starColour;
  int32_t MatrixSize;  // mesh of the fractal; detail of Perturbation
  uint32_t ForeColour[kTextureLayers];
  uint32_t BackColour;
  float Power[kTextureLayers];
  uint32_t SeedValue[kTextureLayers];
  float Dimension[kTextureLayers];
  int32_t CreaterCount;  // craters, in tens
  float CreaterDepth;
  float ColorRed[4];  // curve knots
  float ColorGreen[4];
  float ColorBlue[4];
  int32_t BubbleCount;
  int32_t BubbleSize;  // radius in pixels
  float BubblePower;
  float PerturbationPower;
  int32_t BubbleShape;  // TextureBubbleShape
  uint8_t reserved236[32];
};
#pragma pack(pop)

static_assert(sizeof(TextureItem) == 268);
static_assert(offsetof(TextureItem, rect) == 4 && offsetof(TextureItem, reserved40) == 40);
static_assert(offsetof(TextureItem, hour) == 48 && offsetof(TextureItem, starColour) == 68);
static_assert(offsetof(TextureItem, MatrixSize) == 72 && offsetof(TextureItem, ForeColour) == 76);
static_assert(offsetof(TextureItem, BackColour) == 96 && offsetof(TextureItem, Power) == 100);
static_assert(offsetof(TextureItem, SeedValue) == 120 && offsetof(TextureItem, Dimension) == 140);
static_assert(offsetof(TextureItem, CreaterCount) == 160);
static_assert(offsetof(TextureItem, CreaterDepth) == 164);
static_assert(offsetof(TextureItem, ColorRed) == 168 && offsetof(TextureItem, ColorGreen) == 184);
static_assert(offsetof(TextureItem, ColorBlue) == 200 && offsetof(TextureItem, BubbleCount) == 216);
static_assert(offsetof(TextureItem, BubbleSize) == 220 && offsetof(TextureItem, BubblePower) == 224);
static_assert(offsetof(TextureItem, PerturbationPower) == 228);
static_assert(offsetof(TextureItem, BubbleShape) == 232);
static_assert(offsetof(TextureItem, reserved236) == 236);

// Writes the defaults of a new texture: a two-colour fractal of white on blue at mesh 64.
void InitTextureItem(TextureItem* item);
