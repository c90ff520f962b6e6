// Matrix files through the C runtime's file functions. Items are walked by their sizes; a size is
// believed only as far as the file reaches, so a damaged item can't make the reader allocate more
// than the file holds.
#include "materials/tile_file.h"

#include <climits>
#include <cstring>
#include <ctime>
#include <new>

#include "documents/settings.h"
#include "materials/data_folder.h"
#include "platform/machine_owner.h"

namespace {

constexpr char kFileMagic[8] = {'C', 'O', 'B', 'L', 'M', 'T', 'X', 'f'};
constexpr char kItemMagic[4] = {'M', 'T', 'X', 'i'};
constexpr size_t kItemSizeAt = 4;

void PutU32(uint8_t* at, uint32_t value) {
  for (int i = 0; i < 4; ++i) at[i] = static_cast<uint8_t>(value >> (8 * i));
}

uint32_t GetU32(const uint8_t* at) {
  return static_cast<uint32_t>(at[0]) | static_cast<uint32_t>(at[1]) << 8 |
         static_cast<uint32_t>(at[2]) << 16 | static_cast<uint32_t>(at[3]) << 24;
}

void PutName(uint8_t* at, const char* name) {
  const size_t length = strnlen(name, kMatrixNameBytes - 1);
  std::memcpy(at, name, length);
}

// Bytes from the current position to the end of the file; 0 when it can't be told.
uint64_t RemainingBytes(std::FILE* file) {
  const long at = std::ftell(file);
  if (at < 0 || std::fseek(file, 0, SEEK_END) != 0) return 0;
  const long end = std::ftell(file);
  if (std::fseek(file, at, SEEK_SET) != 0 || end < at) return 0;
  return static_cast<uint64_t>(end - at);
}

// Reads and checks the file header; its tile count and writeable flag on success.
int ReadHeader(std::FILE* file, uint32_t* tileCount, int32_t* writeable) {
  uint8_t header[kMatrixHeaderSize];
  if (std::fread(header, 1, sizeof header, file) != sizeof header) return 0;
  if (std::memcmp(header, kFileMagic, sizeof kFileMagic) != 0) return 0;
  *tileCount = GetU32(header + kMatrixTileCountAt);
  *writeable = static_cast<int32_t>(GetU32(header + kMatrixWriteableAt));
  return 1;
}

// Reads an item header: whether its magic is right and the size of its data.
int ReadItemHeader(std::FILE* file, int* good, uint32_t* size) {
  uint8_t item[kMatrixItemHeaderSize];
  if (std::fread(item, 1, sizeof item, file) != sizeof item) return 0;
  *good = std::memcmp(item, kItemMagic, sizeof kItemMagic) == 0;
  *size = GetU32(item + kItemSizeAt);
  return 1;
}

// The item's data as a new block, or null on a short file or a failed allocation.
MovableHandle ReadItemData(std::FILE* file, uint32_t size) {
  if (size > RemainingBytes(file)) return nullptr;
  ScopedBlock block(MovableAlloc(size));
  ScopedLock bytes(block.handle);
  if (!bytes) return nullptr;
  if (std::fread(bytes.bytes, 1, size, file) != size) return nullptr;
  return block.Release();
}

int SkipItemData(std::FILE* file, long itemStart, uint32_t size) {
  const uint64_t target = static_cast<uint64_t>(itemStart) + size;
  if (target > static_cast<uint64_t>(LONG_MAX)) return 0;
  return std::fseek(file, static_cast<long>(target), SEEK_SET) == 0;
}

int WriteAll(std::FILE* file, const void* bytes, size_t size) {
  return std::fwrite(bytes, 1, size, file) == size;
}

}  // namespace

void ClearTileList(TileList* list) {
  for (MovableHandle tile : list->tiles) MovableFree(tile);
  list->tiles.clear();
}

void MakeMatrixHeader(uint8_t* header, uint32_t time, const MatrixOwner* names,
                      uint32_t tileCount) {
  std::memset(header, 0, kMatrixHeaderSize);
  std::memcpy(header, kFileMagic, sizeof kFileMagic);
  PutU32(header + kMatrixTimeAt, time);
  if (names) {
    PutName(header + kMatrixOwnerAt, names->owner);
    PutName(header + kMatrixOrganisationAt, names->organisation);
    PutName(header + kMatrixRegistrationNameAt, names->registrationName);
    PutU32(header + kMatrixRegisteredAt, names->registrationName[0] ? 1 : 0);
  }
  PutU32(header + kMatrixVersionMajorAt, 16);
  PutU32(header + kMatrixVersionMinorAt, 0);
  PutU32(header + kMatrixVersionLetterAt, 'a');
  PutU32(header + kMatrixTileCountAt, tileCount);
  PutU32(header + kMatrixWriteableAt, 1);  // a group that we write can always be written again
}

void CurrentMatrixOwner(MatrixOwner* names) {
  std::memset(names, 0, sizeof *names);
  MachineOwnerNames(names->owner, sizeof names->owner, names->organisation,
                    sizeof names->organisation);
  if (const char* registration = SettingString("RegistrationName"))
    std::memcpy(names->registrationName, registration,
                strnlen(registration, sizeof names->registrationName - 1));
}

MovableHandle LoadTileFrom(std::FILE* file, uint32_t index) {
  uint32_t count = 0;
  int32_t writeable = 0;
  if (!file || !ReadHeader(file, &count, &writeable) || count < 1) return nullptr;
  for (uint32_t i = 0; i < count; ++i) {
    int good = 0;
    uint32_t size = 0;
    if (!ReadItemHeader(file, &good, &size)) return nullptr;
    const long dataStart = std::ftell(file);
    if (dataStart < 0) return nullptr;
    // An item with a wrong magic still takes its place in the count.
    if (good && i == index) return ReadItemData(file, size);
    if (!SkipItemData(file, dataStart, size)) return nullptr;
  }
  return nullptr;
}

MovableHandle LoadTile(const char* path, uint32_t index) {
  std::FILE* file = path && path[0] ? std::fopen(path, "rb") : nullptr;
  if (!file) return nullptr;
  MovableHandle tile = LoadTileFrom(file, index);
  std::fclose(file);
  return tile;
}

int ReadMatrixFrom(std::FILE* file, TileList* list) {
  uint32_t count = 0;
  int32_t writeable = 0;
  if (!file || !list || !ReadHeader(file, &count, &writeable)) return 0;
  list->writeable = writeable;
  ClearTileList(list);
  for (uint32_t i = 0; i < count; ++i) {
    int good = 0;
    uint32_t size = 0;
    if (!ReadItemHeader(file, &good, &size)) return 0;
    const long dataStart = std::ftell(file);
    if (dataStart < 0) return 0;
    if (good) {
      MovableHandle tile = ReadItemData(file, size);
      if (!tile) return 0;
      try {
        list->tiles.push_back(tile);
      } catch (const std::bad_alloc&) {
        MovableFree(tile);  // a tile the list can't take is dropped, and reading goes on
      }
    }
    if (!SkipItemData(file, dataStart, size)) return 0;
  }
  return 1;
}

int ReadMatrixFileAt(const char* path, TileList* list) {
  std::FILE* file = path && path[0] ? std::fopen(path, "rb") : nullptr;
  if (!file) return 1;  // a group that isn't there yet is an empty group
  const int read = ReadMatrixFrom(file, list);
  std::fclose(file);
  return read;
}

int WriteMatrixFileAt(const char* path, const TileList* list, uint32_t time,
                      const MatrixOwner* names) {
  if (!path || !path[0] || !list) return 0;
  BackUpFile(path);
  std::FILE* file = std::fopen(path, "wb");
  if (!file) return 0;
  uint8_t header[kMatrixHeaderSize];
  MakeMatrixHeader(header, time, names, 0);
  int ok = WriteAll(file, header, sizeof header);
  uint32_t written = 0;
  for (size_t i = 0; ok && i < list->tiles.size(); ++i) {
    MovableHandle tile = list->tiles[i];
    ScopedLock bytes(tile);
    if (!bytes) continue;
    const size_t size = MovableSize(tile);
    uint8_t item[kMatrixItemHeaderSize] = {};
    std::memcpy(item, kItemMagic, sizeof kItemMagic);
    PutU32(item + kItemSizeAt, static_cast<uint32_t>(size));
    ok = WriteAll(file, item, sizeof item) && WriteAll(file, bytes.bytes, size);
    if (ok) ++written;
  }
  if (ok) {
    PutU32(header + kMatrixTileCountAt, written);
    ok = std::fseek(file, 0, SEEK_SET) == 0 && WriteAll(file, header, sizeof header);
  }
  if (std::fclose(file) != 0) ok = 0;
  return ok;
}

int CurrentMatrixPath(char* path, size_t size) {
  const char* name = SettingString("MatrixLibrary");
  return DataFilePath(name && name[0] ? name : kMatrixDefaultFile, path, size);
}

int ReadMatrixFile(TileList* list) {
  char path[kDataPathSize];
  if (!CurrentMatrixPath(path, sizeof path)) return 1;
  return ReadMatrixFileAt(path, list);
}

int WriteMatrixFile(const TileList* list) {
  char path[kDataPathSize];
  if (!CurrentMatrixPath(path, sizeof path)) return 0;
  MatrixOwner names;
  CurrentMatrixOwner(&names);
  return WriteMatrixFileAt(path, list, static_cast<uint32_t>(std::time(nullptr)), &names);
}
