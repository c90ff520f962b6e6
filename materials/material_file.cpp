// The material button's file: a table of the spans that the record and its file form share, read
// and written through the C runtime's file functions. The file form drops the two handles and
// the four bytes that separate the marker list's name from its markers in memory.
#include "materials/material_file.h"

#include <cstdio>
#include <cstring>

#include "materials/data_folder.h"
#include "materials/material_button.h"
#include "materials/tile.h"

namespace {

struct FileSpan {
  uint32_t memory;  // offset in the record
  uint32_t file;    // offset in the file form
  uint32_t length;
};

constexpr uint32_t kFountainAt = offsetof(Material, fountain);
constexpr uint32_t kFountainHead = offsetof(FountainGradient, name) + 261;  // up to the terminator
constexpr uint32_t kFountainTail = kFountainSize - offsetof(FountainGradient, markerCount);
constexpr uint32_t kFileMarkerCountAt = 285;  // the markers' count in the fountain's file form

const FileSpan kSpans[] = {
    {0, 0, kFountainAt},  // magic to gradient
    {kFountainAt, kFountainAt, kFountainHead},
    {kFountainAt + offsetof(FountainGradient, markerCount), kFountainAt + kFileMarkerCountAt,
     kFountainTail},
    {offsetof(Material, texture), 649, kTextureItemSize},
    {offsetof(Material, tilePath), 917, kTilePathBytes},
    {offsetof(Material, tileIndex), 1178, 4},
    {offsetof(Material, tileRect), 1186, 16},
    {offsetof(Material, tileReserved), 1202, 4},
    {offsetof(Material, averageColour), 1238, 4},
};

static_assert(kFountainAt + kFileMarkerCountAt + kFountainTail == 649,
              "the texture follows the fountain's file form");
constexpr uint32_t kFileFountainSizeAt = kFountainAt + offsetof(FountainGradient, size);
constexpr uint32_t kFileFountainNameEnd = kFountainAt + kFountainHead - 1;
constexpr uint32_t kFileTilePathEnd = 917 + kTilePathBytes - 1;

void PutU32(uint8_t* at, uint32_t value) {
  for (int i = 0; i < 4; ++i) at[i] = static_cast<uint8_t>(value >> (8 * i));
}

int WriteFileForm(const char* path, const uint8_t* form) {
  std::FILE* file = path && path[0] ? std::fopen(path, "wb") : nullptr;
  if (!file) return 0;
  const size_t written = std::fwrite(form, 1, kMaterialFileSize, file);
  const int closed = std::fclose(file) == 0;
  if (written == kMaterialFileSize && closed) return 1;
  std::remove(path);
  return 0;
}

}  // namespace

void MaterialToFileForm(const Material* material, uint8_t* file) {
  const uint8_t* record = reinterpret_cast<const uint8_t*>(material);
  std::memset(file, 0, kMaterialFileSize);
  for (const FileSpan& s : kSpans) std::memcpy(file + s.file, record + s.memory, s.length);
  PutU32(file + kFileFountainSizeAt, kFountainFileSize);
  file[kFileFountainNameEnd] = 0;
  file[kFileTilePathEnd] = 0;  // at most 260 characters
}

int MaterialFromFileForm(const uint8_t* file, Material* material) {
  if (std::memcmp(file, "COBLCMAT", 8) != 0) return 0;
  uint8_t* record = reinterpret_cast<uint8_t*>(material);
  std::memset(record, 0, kMaterialSize);
  for (const FileSpan& s : kSpans) std::memcpy(record + s.memory, file + s.file, s.length);
  material->fountain.size = kFountainSize;
  return 1;
}

int MaterialFilePath(int32_t controlId, char* path, size_t size) {
  char name[32];
  std::snprintf(name, sizeof name, "Material%.5d.mtrl", controlId);  // five digits at least
  return DataFilePath(name, path, size);
}

int ReadMaterialFile(const char* path, Material* material) {
  std::FILE* file = path && path[0] ? std::fopen(path, "rb") : nullptr;
  if (!file) return 0;
  uint8_t form[kMaterialFileSize];
  const size_t read = std::fread(form, 1, sizeof form, file);
  std::fclose(file);
  return read == sizeof form && MaterialFromFileForm(form, material);
}

int WriteMaterialFile(const char* path, const Material* material) {
  uint8_t form[kMaterialFileSize];
  MaterialToFileForm(material, form);
  return WriteFileForm(path, form);
}

MovableHandle LoadButtonMaterial(int32_t controlId, uint32_t creationColour, int ignoreFile) {
  ScopedBlock block(CreateButtonMaterial(creationColour));
  ScopedLock lock(block.handle);
  if (!lock) return nullptr;
  Material* material = reinterpret_cast<Material*>(lock.bytes);
  char path[kDataPathSize];
  if (!ignoreFile && MaterialFilePath(controlId, path, sizeof path))
    ReadMaterialFile(path, material);
  material->tileImage = nullptr;
  material->preview = nullptr;
  ReloadMaterialTile(material);
  return block.Release();
}

int SaveButtonMaterial(int32_t controlId, MovableHandle material) {
  if (!material) return 0;
  uint8_t form[kMaterialFileSize];
  int held = 0;
  {
    ScopedLock lock(material);
    if (lock && MovableSize(material) >= kMaterialSize) {
      Material* record = reinterpret_cast<Material*>(lock.bytes);
      FreeMaterialImages(record);
      MaterialToFileForm(record, form);
      held = 1;
    }
  }
  MovableFree(material);
  if (!held) return 0;
  char path[kDataPathSize];
  return MaterialFilePath(controlId, path, sizeof path) && WriteFileForm(path, form);
}
