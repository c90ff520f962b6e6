// gm5_texture_pictures FOLDER [WIDTH HEIGHT]: writes the default picture of each texture generator,
// filled as a material fill of WIDTH by HEIGHT (default 240 by 160), to FOLDER/texture-N.bmp,
// N being the TextureType. A BMP file is the Packed DIB behind a 14-byte file header. For looking
// at the generators (scripts/texture-sheet); exits 1 when a picture cannot be made or written.
#include <cstdio>
#include <cstdlib>
#include <string>

#include "materials/material.h"
#include "materials/texture_generator.h"
#include "shell/packed_dib.h"

namespace {

void PutLittleEndian(uint8_t* p, uint32_t value, int bytes) {
  for (int i = 0; i < bytes; ++i) p[i] = static_cast<uint8_t>(value >> (8 * i));
}

int WriteBmp(const std::string& path, MovableHandle image) {
  ScopedLock lock(image);
  if (!lock) return 0;
  const uint32_t size = static_cast<uint32_t>(MovableSize(image));
  uint8_t header[14] = {'B', 'M'};
  PutLittleEndian(header + 2, 14 + size, 4);
  PutLittleEndian(header + 10, 14 + kDibHeaderBytes, 4);
  std::FILE* file = std::fopen(path.c_str(), "wb");
  if (!file) return 0;
  const bool written =
      std::fwrite(header, 1, 14, file) == 14 && std::fwrite(lock.bytes, 1, size, file) == size;
  return std::fclose(file) == 0 && written;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2 && argc != 4) {
    std::fprintf(stderr, "usage: gm5_texture_pictures FOLDER [WIDTH HEIGHT]\n");
    return 2;
  }
  const int32_t width = argc == 4 ? std::atoi(argv[2]) : 240;
  const int32_t height = argc == 4 ? std::atoi(argv[3]) : 160;
  int failed = 0;
  for (int32_t type = 0; type < kTextureTypeCount; ++type) {
    Material material;
    InitMaterial(&material);
    material.kind = kMaterialTexture;
    material.texture.TextureType = type;
    ScopedBlock image(MaterialFill(&material, width, height));
    const std::string path = std::string(argv[1]) + "/texture-" + std::to_string(type) + ".bmp";
    if (!image.handle || !WriteBmp(path, image.handle)) {
      std::fprintf(stderr, "%s: %s could not be made or written\n", path.c_str(),
                   TextureGeneratorTable[type].name);
      failed = 1;
    }
  }
  return failed;
}
