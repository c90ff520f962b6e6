// Materials: the fill source an effect takes from a material button, one flat packed record of
// 1282 bytes held in a movable block, and MaterialFill, the one call that turns it into pixels.
// The record is copied and hex-encoded byte for byte, so its layout is fixed field by field. Its
// run-time handles (`tileImage`, `preview`) are owned by the record. Colours are 0x00BBGGRR.
#pragma once

#include <cstddef>
#include <cstdint>

#include "materials/gradient.h"
#include "materials/texture_item.h"
#include "platform/memory.h"

enum MaterialKind : int32_t {
  kMaterialSimple = 0,
  kMaterialGradient = 1,
  kMaterialTexture = 2,
  kMaterialTile = 3,
};

constexpr uint32_t kMaterialSize = 1282;
constexpr uint32_t kMaterialVersion = 0x00040000;
constexpr uint32_t kTextureItemSize = sizeof(TextureItem);
constexpr uint32_t kTilePathBytes = 261;

// pressState bits, held only while the mouse is down.
constexpr uint32_t kMaterialBodyPressed = 1;
constexpr uint32_t kMaterialArrowPressed = 2;

#pragma pack(push, 1)
struct Material {
  char magic[8];  // "COBLCMAT", no terminator
  uint32_t size;
  uint32_t version;
  int32_t kind;  // MaterialKind
  uint32_t solidColour;
  uint32_t pressState;
  GradientSpec gradient;
  FountainGradient fountain;          // the marker list of `gradient`
  TextureItem texture;                // the texture generator's record
  char tilePath[kTilePathBytes];      // matrix file of the tile; empty for none
  uint32_t tileIndex;
  MovableHandle tileImage;  // the loaded tile, or null
  int32_t tileRect[4];      // left, top, right, bottom: the size of the next Tile fill
  uint32_t tileReserved;    // carried to and from the file, never read
  uint8_t reserved1[28];
  MovableHandle preview;   // what the button paints, or null
  uint32_t averageColour;  // mean colour of `preview`
  uint8_t reserved2[28];
};
#pragma pack(pop)

static_assert(sizeof(MovableHandle) == 8, "the record holds 64-bit handles");
static_assert(sizeof(Material) == kMaterialSize);
static_assert(offsetof(Material, size) == 8 && offsetof(Material, version) == 12);
static_assert(offsetof(Material, kind) == 16 && offsetof(Material, solidColour) == 20);
static_assert(offsetof(Material, pressState) == 24 && offsetof(Material, gradient) == 28);
static_assert(offsetof(Material, fountain) == 68 && offsetof(Material, texture) == 653);
static_assert(offsetof(Material, tilePath) == 921 && offsetof(Material, tileIndex) == 1182);
static_assert(offsetof(Material, tileImage) == 1186 && offsetof(Material, tileRect) == 1194);
static_assert(offsetof(Material, tileReserved) == 1210 && offsetof(Material, reserved1) == 1214);
static_assert(offsetof(Material, preview) == 1242 && offsetof(Material, averageColour) == 1250);
static_assert(offsetof(Material, reserved2) == 1254);

// Writes the defaults of a new material: grey Simple colour, a dark-to-light two-colour Linear
// gradient, the seven-colour marker list, the default texture, no tile.
void InitMaterial(Material* material);

// Frees the record's run-time pictures, `preview` and `tileImage`, and clears them.
void FreeMaterialImages(Material* material);

// The centred width by height part of a square picture (a texture is always generated square): a
// new picture of the same depth and colour table, from max((side - width) / 2, 0) and
// max((side - height) / 2, 0). Null when memory fails; `square` is left alone.
MovableHandle CentredCrop(MovableHandle square, int32_t width, int32_t height);

// A new width by height 24-bit Packed DIB of the material's fill, owned by the caller, or null.
// Writes the fill size into the record first, so `material` must be writable. Kinds other than
// the four known ones give a black image; a texture type outside the generator table fails.
// A Tile fill without a loadable tile uses the default tile rather than failing.
MovableHandle MaterialFill(Material* material, int32_t width, int32_t height);
