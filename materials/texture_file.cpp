// Texture groups through the C runtime's text-mode file functions. Every item key is one row of a
// table that both the writer and the reader walk, so the two can't drift apart.
#include "materials/texture_file.h"

#include <cctype>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <new>

#include "documents/settings.h"
#include "materials/data_folder.h"
#include "materials/texture_item.h"

namespace {

constexpr char kMagicLine[] = "COBALT LANTERNARY Q-BRUSH TEXTURE FILE";
constexpr const char* kCommentLines[] = {
    ";This is a machine-generated text file. If you edit it by hand, you",
    ";run the very real and tangible risk of causing all time and space to",
    ";implode upon itself and bring about the extinction of reality as we",
    ";know it. Think carefully...",
};
constexpr char kItemsBegin[] = ";Items begin";
constexpr char kItemsEnd[] = ";Items end -- beyond this point be dragons.";
constexpr char kBeginItem[] = ":BEGINITEM";
constexpr char kEndItem[] = ":ENDITEM";
constexpr char kUnknownName[] = "UNKNOWN NAME";
constexpr char kHouseOrganisation[] = "Cobalt Lanternary";

enum KeyKind { kKeyFloat, kKeyInteger };

struct ItemKey {
  const char* key;
  size_t offset;
  KeyKind kind;
};

#define TEXTURE_KEY(name, field, kind) {name, offsetof(TextureItem, field), kind}

// In the order the writer puts them.
constexpr ItemKey kItemKeys[] = {
    TEXTURE_KEY("Power1", Power[0], kKeyFloat),
    TEXTURE_KEY("Power2", Power[1], kKeyFloat),
    TEXTURE_KEY("Power3", Power[2], kKeyFloat),
    TEXTURE_KEY("Power4", Power[3], kKeyFloat),
    TEXTURE_KEY("Power5", Power[4], kKeyFloat),
    TEXTURE_KEY("SeedValue1", SeedValue[0], kKeyInteger),
    TEXTURE_KEY("SeedValue2", SeedValue[1], kKeyInteger),
    TEXTURE_KEY("SeedValue3", SeedValue[2], kKeyInteger),
    TEXTURE_KEY("SeedValue4", SeedValue[3], kKeyInteger),
    TEXTURE_KEY("SeedValue5", SeedValue[4], kKeyInteger),
    TEXTURE_KEY("Dimension1", Dimension[0], kKeyFloat),
    TEXTURE_KEY("Dimension2", Dimension[1], kKeyFloat),
    TEXTURE_KEY("Dimension3", Dimension[2], kKeyFloat),
    TEXTURE_KEY("Dimension4", Dimension[3], kKeyFloat),
    TEXTURE_KEY("Dimension5", Dimension[4], kKeyFloat),
    TEXTURE_KEY("MatrixSize", MatrixSize, kKeyInteger),
    TEXTURE_KEY("TextureType", TextureType, kKeyInteger),
    TEXTURE_KEY("ForeColour1", ForeColour[0], kKeyInteger),
    TEXTURE_KEY("ForeColour2", ForeColour[1], kKeyInteger),
    TEXTURE_KEY("ForeColour3", ForeColour[2], kKeyInteger),
    TEXTURE_KEY("ForeColour4", ForeColour[3], kKeyInteger),
    TEXTURE_KEY("ForeColour5", ForeColour[4], kKeyInteger),
    TEXTURE_KEY("BackColour", BackColour, kKeyInteger),
    TEXTURE_KEY("CreaterCount", CreaterCount, kKeyInteger),
    TEXTURE_KEY("CreaterDepth", CreaterDepth, kKeyFloat),
    TEXTURE_KEY("ColorRed0", ColorRed[0], kKeyFloat),
    TEXTURE_KEY("ColorRed1", ColorRed[1], kKeyFloat),
    TEXTURE_KEY("ColorRed2", ColorRed[2], kKeyFloat),
    TEXTURE_KEY("ColorRed3", ColorRed[3], kKeyFloat),
    TEXTURE_KEY("ColorGreen0", ColorGreen[0], kKeyFloat),
    TEXTURE_KEY("ColorGreen1", ColorGreen[1], kKeyFloat),
    TEXTURE_KEY("ColorGreen2", ColorGreen[2], kKeyFloat),
    TEXTURE_KEY("ColorGreen3", ColorGreen[3], kKeyFloat),
    TEXTURE_KEY("ColorBlue0", ColorBlue[0], kKeyFloat),
    TEXTURE_KEY("ColorBlue1", ColorBlue[1], kKeyFloat),
    TEXTURE_KEY("ColorBlue2", ColorBlue[2], kKeyFloat),
    TEXTURE_KEY("ColorBlue3", ColorBlue[3], kKeyFloat),
    TEXTURE_KEY("BubbleCount", BubbleCount, kKeyInteger),
    TEXTURE_KEY("BubbleSize", BubbleSize, kKeyInteger),
    TEXTURE_KEY("BubblePower", BubblePower, kKeyFloat),
    TEXTURE_KEY("BubbleShape", BubbleShape, kKeyInteger),
    TEXTURE_KEY("PerturbationPower", PerturbationPower, kKeyFloat),
};

#undef TEXTURE_KEY

int SameIgnoringCase(const char* a, const char* b) {
  for (; *a && *b; ++a, ++b)
    if (std::tolower(static_cast<unsigned char>(*a)) != std::tolower(static_cast<unsigned char>(*b)))
      return 0;
  return *a == *b;
}

int CompareIgnoringCase(const char* a, const char* b) {
  for (;; ++a, ++b) {
    const int ca = std::tolower(static_cast<unsigned char>(*a));
    const int cb = std::tolower(static_cast<unsigned char>(*b));
    if (ca != cb || !ca) return ca - cb;
  }
}

// Removes trailing bytes of value 32 or below: blanks, tabs, carriage returns, the newline.
void TrimEnd(char* text) {
  size_t length = std::strlen(text);
  while (length > 0 && static_cast<unsigned char>(text[length - 1]) <= 32) text[--length] = 0;
}

// Reads the next line, trimmed, into `line`; 0 at the end of the file. A line longer than the
// limit comes back in pieces.
int ReadLine(std::FILE* file, char* line) {
  if (!std::fgets(line, static_cast<int>(kTextureLineLimit), file)) return 0;
  TrimEnd(line);
  return 1;
}

// Splits "key = value" in place. The value skips blanks and any further "=" after the first.
// Returns 0 for a comment or a line without "=".
int SplitLine(char* line, char** key, char** value) {
  if (line[0] == ';') return 0;
  char* equals = std::strchr(line, '=');
  if (!equals) return 0;
  *equals = 0;
  TrimEnd(line);
  char* v = equals + 1;
  while (*v && (static_cast<unsigned char>(*v) < 33 || *v == '=')) ++v;
  TrimEnd(v);
  *key = line;
  *value = v;
  return 1;
}

uint32_t IntegerValue(const char* value) {
  // Wider than long on every port, so the writer's unsigned values all come back unchanged.
  return static_cast<uint32_t>(std::strtoll(value, nullptr, 10));
}

void ApplyItemKey(TextureItem* item, char* name, const char* key, const char* value) {
  if (SameIgnoringCase(key, "TextureName")) {
    std::memset(name, 0, kTextureNameSize);
    std::memcpy(name, value, strnlen(value, kTextureNameSize - 1));
    return;
  }
  for (const ItemKey& k : kItemKeys) {
    if (!SameIgnoringCase(key, k.key)) continue;
    uint8_t* at = reinterpret_cast<uint8_t*>(item) + k.offset;
    if (k.kind == kKeyFloat) {
      const float f = static_cast<float>(std::atof(value));
      std::memcpy(at, &f, sizeof f);
    } else {
      const uint32_t n = IntegerValue(value);
      std::memcpy(at, &n, sizeof n);
    }
    return;
  }
}

// Reads one item's lines up to ":ENDITEM" into a new block and adds it under the last name read.
// Returns 0 on a failed allocation or a file that ends inside the item; the item read so far is
// kept in the list then, so nothing the file held is lost.
int ReadItem(std::FILE* file, TextureList* list, char* name, char* line) {
  MovableHandle handle = MovableAlloc(sizeof(TextureItem));
  if (!handle) return 0;
  int finished = 0;
  {
    ScopedLock bytes(handle);
    if (!bytes) {
      MovableFree(handle);
      return 0;
    }
    TextureItem* item = reinterpret_cast<TextureItem*>(bytes.bytes);
    InitTextureItem(item);
    while (ReadLine(file, line)) {
      if (SameIgnoringCase(line, kEndItem)) {
        finished = 1;
        break;
      }
      char* key = nullptr;
      char* value = nullptr;
      if (SplitLine(line, &key, &value)) ApplyItemKey(item, name, key, value);
    }
  }
  if (!AddTextureEntry(list, name, handle)) MovableFree(handle);
  return finished;
}

int Print(std::FILE* file, const char* format, ...) __attribute__((format(printf, 2, 3)));

int Print(std::FILE* file, const char* format, ...) {
  va_list args;
  va_start(args, format);
  const int written = std::vfprintf(file, format, args);
  va_end(args);
  return written >= 0;
}

int WriteItem(std::FILE* file, const char* name, const TextureItem* item) {
  int ok = Print(file, "%s\n", kBeginItem);
  ok &= Print(file, "TextureName=%s\n", name && name[0] ? name : kUnknownName);
  const uint8_t* base = reinterpret_cast<const uint8_t*>(item);
  for (const ItemKey& k : kItemKeys) {
    if (k.kind == kKeyFloat) {
      float f;
      std::memcpy(&f, base + k.offset, sizeof f);
      ok &= Print(file, "%s=%f\n", k.key, static_cast<double>(f));
    } else {
      uint32_t n;
      std::memcpy(&n, base + k.offset, sizeof n);
      ok &= Print(file, "%s=%lu\n", k.key, static_cast<unsigned long>(n));
    }
  }
  ok &= Print(file, "%s\n", kEndItem);
  return ok;
}

}  // namespace

void ClearTextureList(TextureList* list) {
  for (TextureEntry& entry : list->entries) MovableFree(entry.item);
  list->entries.clear();
}

size_t AddTextureEntry(TextureList* list, const char* name, MovableHandle item) {
  TextureEntry entry = {};
  if (name) std::memcpy(entry.name, name, strnlen(name, kTextureNameSize - 1));
  entry.item = item;
  size_t at = 0;
  while (at < list->entries.size() && CompareIgnoringCase(list->entries[at].name, entry.name) <= 0)
    ++at;
  try {
    list->entries.insert(list->entries.begin() + static_cast<ptrdiff_t>(at), entry);
  } catch (const std::bad_alloc&) {
    return 0;
  }
  return at + 1;
}

int RemoveTextureEntry(TextureList* list, size_t index) {
  if (index >= list->entries.size()) return 0;
  MovableFree(list->entries[index].item);
  list->entries.erase(list->entries.begin() + static_cast<ptrdiff_t>(index));
  return 1;
}

int ReadTextureFrom(std::FILE* file, TextureList* list) {
  char* line = static_cast<char*>(std::malloc(kTextureLineLimit));
  if (!line) return 0;
  int result = 0;
  if (ReadLine(file, line) && std::strcmp(line, kMagicLine) == 0) {
    ClearTextureList(list);
    char name[kTextureNameSize] = {};
    result = 1;
    while (result && ReadLine(file, line)) {
      if (SameIgnoringCase(line, kBeginItem)) {
        result = ReadItem(file, list, name, line);
        continue;
      }
      char* key = nullptr;
      char* value = nullptr;
      if (SplitLine(line, &key, &value) && SameIgnoringCase(key, "Writeable"))
        list->writeable = static_cast<int32_t>(std::atol(value));
    }
  }
  std::free(line);
  return result;
}

int ReadTextureFileAt(const char* path, TextureList* list) {
  if (!path || !path[0]) return 0;
  std::FILE* file = std::fopen(path, "r");
  if (!file) return 0;
  const int result = ReadTextureFrom(file, list);
  std::fclose(file);
  return result;
}

int WriteTextureTo(std::FILE* file, const TextureList* list, int64_t time,
                   const MatrixOwner* names) {
  if (list->entries.empty()) return 1;
  const MatrixOwner none = {};
  if (!names) names = &none;
  const int house = SameIgnoringCase(names->organisation, kHouseOrganisation);
  const std::time_t when = static_cast<std::time_t>(time);
  const char* stamp = std::ctime(&when);
  int ok = Print(file, "%s\n", kMagicLine);
  for (const char* comment : kCommentLines) ok &= Print(file, "%s\n", comment);
  ok &= Print(file, "Version=%d.%d%c\n", 16, 0, 'a');
  ok &= Print(file, "Itemcount=%d\n", static_cast<int>(list->entries.size()));
  ok &= Print(file, "Writeable=1\n");
  ok &= Print(file, "UpdateTimeDate=%24.24s\n", stamp ? stamp : "");
  ok &= Print(file, "RegisteredUser=%d\n", names->registrationName[0] ? 1 : 0);
  ok &= Print(file, "MachineName=%s\n", house ? "" : names->owner);
  ok &= Print(file, "MachineOrganization=%s\n", house ? "" : names->organisation);
  ok &= Print(file, "RegistrationName=%s\n", house ? "" : names->registrationName);
  ok &= Print(file, "%s\n", kItemsBegin);
  for (const TextureEntry& entry : list->entries) {
    ScopedLock bytes(entry.item);
    if (!bytes || MovableSize(entry.item) < sizeof(TextureItem)) continue;
    ok &= WriteItem(file, entry.name, reinterpret_cast<const TextureItem*>(bytes.bytes));
  }
  ok &= Print(file, "%s\n", kItemsEnd);
  return ok;
}

int WriteTextureFileAt(const char* path, const TextureList* list, int64_t time,
                       const MatrixOwner* names) {
  if (!path || !path[0] || !list) return 0;
  BackUpFile(path);
  std::FILE* file = std::fopen(path, "w");
  if (!file) return 0;
  int ok = WriteTextureTo(file, list, time, names);
  if (std::fclose(file) != 0) ok = 0;
  return ok;
}

int CurrentTexturePath(char* path, size_t size) {
  const char* name = SettingString("DefaultTextureFileName");
  return DataFilePath(name && name[0] ? name : kTextureDefaultFile, path, size);
}

int ReadTextureFile(TextureList* list) {
  char path[kDataPathSize];
  if (!CurrentTexturePath(path, sizeof path)) return 0;
  return ReadTextureFileAt(path, list);
}

int WriteTextureFile(const TextureList* list) {
  char path[kDataPathSize];
  if (!CurrentTexturePath(path, sizeof path)) return 0;
  MatrixOwner names;
  CurrentMatrixOwner(&names);
  return WriteTextureFileAt(path, list, static_cast<int64_t>(std::time(nullptr)), &names);
}
