// Reading and writing the gradient library through the C runtime's file functions. Entries are
// appended in place; a rewrite (after entries were deleted in the library dialog) starts a new
// file after keeping the old one as a backup.
#include "materials/fountain_library.h"

#include <cstdio>
#include <cstring>
#include <ctime>
#include <string>

#include "materials/data_folder.h"

namespace {

constexpr char kHeaderMagic[8] = {'C', 'O', 'B', 'L', 'F', 'L', 'H', 'H'};
constexpr char kEntryMagic[8] = {'C', 'O', 'B', 'L', 'F', 'L', 'H', 'E'};
constexpr size_t kEntryCountAt = 12;

void PutU32(uint8_t* at, uint32_t value) {
  for (int i = 0; i < 4; ++i) at[i] = static_cast<uint8_t>(value >> (8 * i));
}

uint32_t GetU32(const uint8_t* at) {
  return static_cast<uint32_t>(at[0]) | static_cast<uint32_t>(at[1]) << 8 |
         static_cast<uint32_t>(at[2]) << 16 | static_cast<uint32_t>(at[3]) << 24;
}

void MakeHeader(uint8_t* header, uint32_t created, uint32_t entryCount) {
  std::memset(header, 0, kLibraryHeaderSize);
  std::memcpy(header, kHeaderMagic, 8);
  PutU32(header + 8, created);
  PutU32(header + kEntryCountAt, entryCount);
}

int CreateLibrary(const char* path, uint32_t created) {
  std::FILE* file = std::fopen(path, "wb");
  if (!file) return 0;
  uint8_t header[kLibraryHeaderSize];
  MakeHeader(header, created, 0);
  const size_t written = std::fwrite(header, 1, sizeof header, file);
  const int closed = std::fclose(file) == 0;
  if (written == sizeof header && closed) return 1;
  std::remove(path);
  return 0;
}

int FileExists(const char* path) {
  std::FILE* file = std::fopen(path, "rb");
  if (!file) return 0;
  std::fclose(file);
  return 1;
}

}  // namespace

void FountainToLibraryEntry(const FountainGradient* gradient, uint8_t* entry) {
  std::memset(entry, 0, kLibraryEntrySize);
  std::memcpy(entry, kEntryMagic, 8);
  PutU32(entry + 8, gradient->markerCount);
  PutU32(entry + 12, gradient->leftColour);
  PutU32(entry + 16, gradient->rightColour);
  for (int32_t i = 0; i < kFountainMarkers; ++i) PutU32(entry + 20 + 4 * i, gradient->markers[i]);
}

int FountainFromLibraryEntry(const uint8_t* entry, FountainGradient* gradient) {
  if (std::memcmp(entry, kEntryMagic, 8) != 0) return 0;
  const uint32_t count = GetU32(entry + 8);
  if (count > kFountainMarkers) return 0;
  std::memset(gradient, 0, sizeof *gradient);
  InitFountainGradient(gradient, 0);
  gradient->markerCount = count;
  gradient->leftColour = GetU32(entry + 12);
  gradient->rightColour = GetU32(entry + 16);
  for (int32_t i = 0; i < kFountainMarkers; ++i) gradient->markers[i] = GetU32(entry + 20 + 4 * i);
  return 1;
}

int ReadLibraryBytes(const uint8_t* bytes, size_t size, LibraryEntryProc proc, void* context) {
  if (!bytes || size < kLibraryHeaderSize || std::memcmp(bytes, kHeaderMagic, 8) != 0) return 0;
  const uint32_t count = GetU32(bytes + kEntryCountAt);
  for (uint32_t i = 0; i < count; ++i) {
    const size_t at = kLibraryHeaderSize + static_cast<size_t>(i) * kLibraryEntrySize;
    if (at > size || size - at < kLibraryEntrySize) break;
    FountainGradient gradient;
    if (!FountainFromLibraryEntry(bytes + at, &gradient)) break;
    if (!proc(context, &gradient)) break;
  }
  return 1;
}

int ReadLibraryFile(const char* path, LibraryEntryProc proc, void* context) {
  std::FILE* file = path && path[0] ? std::fopen(path, "rb") : nullptr;
  if (!file) return 0;
  uint8_t header[kLibraryHeaderSize];
  if (std::fread(header, 1, sizeof header, file) != sizeof header ||
      std::memcmp(header, kHeaderMagic, 8) != 0) {
    std::fclose(file);
    return 0;
  }
  const uint32_t count = GetU32(header + kEntryCountAt);
  uint8_t entry[kLibraryEntrySize];
  for (uint32_t i = 0; i < count; ++i) {
    if (std::fread(entry, 1, sizeof entry, file) != sizeof entry) break;
    FountainGradient gradient;
    if (!FountainFromLibraryEntry(entry, &gradient)) break;
    if (!proc(context, &gradient)) break;
  }
  std::fclose(file);
  return 1;
}

int AddToLibraryFile(const char* path, const FountainGradient* gradient, uint32_t created) {
  if (!path || !path[0] || !gradient) return 0;
  if (!FileExists(path) && !CreateLibrary(path, created)) return 0;
  std::FILE* file = std::fopen(path, "r+b");
  if (!file) return 0;
  uint8_t header[kLibraryHeaderSize];
  int ok = std::fread(header, 1, sizeof header, file) == sizeof header &&
           std::memcmp(header, kHeaderMagic, 8) == 0;
  const uint32_t count = ok ? GetU32(header + kEntryCountAt) : 0;
  if (ok) {
    uint8_t entry[kLibraryEntrySize];
    FountainToLibraryEntry(gradient, entry);
    const long at = static_cast<long>(kLibraryHeaderSize + static_cast<size_t>(count) *
                                                               kLibraryEntrySize);
    ok = std::fseek(file, at, SEEK_SET) == 0 &&
         std::fwrite(entry, 1, sizeof entry, file) == sizeof entry;
  }
  if (ok) {
    PutU32(header + kEntryCountAt, count + 1);
    ok = std::fseek(file, 0, SEEK_SET) == 0 &&
         std::fwrite(header, 1, sizeof header, file) == sizeof header;
  }
  if (std::fclose(file) != 0) ok = 0;
  return ok;
}

int RewriteLibraryFile(const char* path, const FountainGradient* gradients, size_t count,
                       uint32_t created) {
  if (!path || !path[0]) return 0;
  const std::string backup = std::string(path) + ".bak";
  if (FileExists(path)) {
    std::remove(backup.c_str());
    if (std::rename(path, backup.c_str()) != 0) return 0;
  }
  if (!CreateLibrary(path, created)) return 0;
  for (size_t i = 0; i < count; ++i)
    if (!AddToLibraryFile(path, &gradients[i], created)) return 0;
  return 1;
}

int LibraryFilePath(char* path, size_t size) {
  return DataFilePath("FountainLibrary.fll", path, size);
}

int AddToLibrary(const FountainGradient* gradient) {
  char path[kDataPathSize];
  if (!LibraryFilePath(path, sizeof path)) return 0;
  return AddToLibraryFile(path, gradient, static_cast<uint32_t>(std::time(nullptr)));
}
