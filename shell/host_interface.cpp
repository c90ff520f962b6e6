// The portable half of the host contract: the plug-in's description, the version test, the swatch
// table, the help topic, the comment block, and the check of an AnimationBlock received from the
// host, which is outside data and is read only within its size.
#include "shell/host_interface.h"

#include <cstring>

const char kPluginName[] = "Glyph Motion #5";
const char kPluginCredit[] = "Glyph Motion #5 Plugin (c) Cobalt Lanternary";
const char kHelpDocument[] = "RFDPLGM5.HTML";
const char kHelpTopicPreface[] = "PREFACE";
const char* const kHelpTopics[] = {kHelpTopicPreface};
const int32_t kHelpTopicCount = sizeof kHelpTopics / sizeof kHelpTopics[0];
const char kCommentText[] =
    "CREATED BY...\r\n\r\nThis graphic was created by Cobalt Lanternary' Reel Foundry Professional "
    "or Strip Foundry and the Glyph Motion #5 plugin.\r\n\r\nSee\r\n\r\n"
    "    https://cobalt-lanternary.example/\r\n\r\nfor more information.";
static_assert(sizeof kPluginCredit <= sizeof PluginParams::credit);

HostRecord* CurrentHost = nullptr;

uint64_t CallHost(void* object, int32_t opcode, uint64_t a, uint64_t b) {
  if (!CurrentHost || !CurrentHost->service) return 0;
  return CurrentHost->service(object, opcode, a, b);
}

int HostVersionSupported(uint32_t version) {
  return ((version >> 8) & 0xFF) >= kMinimumHostLevel;
}

int FillPluginParams(PluginParams* params) {
  uint32_t size = params->size;
  memset(params, 0, size);
  params->size = size;
  memcpy(params->name, kPluginName, sizeof kPluginName);
  memcpy(params->credit, kPluginCredit, sizeof kPluginCredit);
  params->version = kInterfaceVersion;
  return 1;
}

void BuildSwatchTable(uint8_t palette[768]) {
  static const uint8_t kLevels[8] = {0, 36, 72, 108, 144, 180, 216, 255};
  static const uint8_t kBlues[4] = {0, 85, 170, 255};
  for (int r = 0; r < 8; ++r) {
    for (int g = 0; g < 8; ++g) {
      for (int k = 0; k < 4; ++k) {
        uint8_t* entry = palette + ((r * 8 + g) * 4 + k) * 3;
        entry[0] = kLevels[r];
        entry[1] = kLevels[g];
        entry[2] = kBlues[k];
      }
    }
  }
}

namespace {

// Reads the u32 at `offset` when four bytes stand there inside `size`.
int ReadU32(const uint8_t* bytes, size_t size, size_t offset, uint32_t* value) {
  if (offset > size || size - offset < 4) return 0;
  memcpy(value, bytes + offset, 4);
  return 1;
}

}  // namespace

int CheckAnimationBlock(const uint8_t* bytes, size_t size) {
  uint32_t magic = 0, headerSize = 0, entryCount = 0;
  if (!bytes || !ReadU32(bytes, size, 0, &magic) || magic != kAnimationBlockMagic) return 0;
  if (!ReadU32(bytes, size, 4, &headerSize) || !ReadU32(bytes, size, 16, &entryCount)) return 0;
  size_t at = headerSize;
  for (uint32_t i = 0; i < entryCount; ++i) {
    if (!ReadU32(bytes, size, at, &magic)) return 0;
    if (magic == kAnimationEndMagic) return 1;
    uint32_t entryHeader = 0, dataSize = 0, dibHeader = 0;
    if (magic != kAnimationEntryMagic || !ReadU32(bytes, size, at + 4, &entryHeader) ||
        !ReadU32(bytes, size, at + 16, &dataSize))
      return 0;
    size_t dib = at + entryHeader;
    if (!ReadU32(bytes, size, dib, &dibHeader) || dibHeader != 40) return 0;
    if (dataSize > size - dib) return 0;
    at = dib + dataSize;
  }
  return ReadU32(bytes, size, at, &magic) && magic == kAnimationEndMagic;
}

int FormatHelpTopic(const char* name, char* topic, size_t capacity) {
  size_t documentLength = sizeof kHelpDocument - 1;
  size_t nameLength = name && *name ? strlen(name) + 1 : 0;
  if (!topic || documentLength + nameLength >= capacity) return 0;
  memcpy(topic, kHelpDocument, documentLength);
  if (nameLength) {
    topic[documentLength] = '#';
    memcpy(topic + documentLength + 1, name, nameLength - 1);
  }
  topic[documentLength + nameLength] = 0;
  return 1;
}
