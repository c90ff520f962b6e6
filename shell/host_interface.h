// The binary contract with the host: the records that cross between the plug-in and the host, the
// callback HostService and its opcodes. All records are packed and little-endian; every width and
// offset is part of the wire format and is checked below. Pointers and handles are 8 bytes wide.
// Records the plug-in builds start with their size and kInterfaceVersion (AnimationRequest with
// its magic); the host owns HostRecord and HostSetting, the plug-in owns the rest.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/dialog.h"
#include "platform/memory.h"

constexpr uint32_t kInterfaceVersion = 0x1000;
// The lowest major interface level (bits 8 to 15 of HostRecord.version) the plug-in works with.
constexpr uint32_t kMinimumHostLevel = 16;

// HostService(object, opcode, a, b): the host's one callback. A result of 0 is failure or refusal.
typedef uint64_t (*HostService)(void* object, int32_t opcode, uint64_t a, uint64_t b);

enum HostOpcode : int32_t {
  HostOpCreateFile = 1,        // b: FileObjectRecord
  HostOpAddImage = 2,          // object: file; b: ImageRecord
  HostOpAddComment = 3,        // object: file; b: text
  HostOpCloseFile = 4,         // object: file; a: 1 commit, 0 abandon
  HostOpCreateTestFile = 5,    // b: FileObjectRecord, for a file the host only shows
  HostOpSelectImageFile = 6,   // b: char buffer of 260 and a terminator, empty on entry
  HostOpLoadImageFile = 8,     // b: path; result: a Packed DIB handle that the plug-in owns
  HostOpShowHelp = 9,          // b: topic text
  HostOpProgressCaption = 10,  // b: caption text
  HostOpChooseColour = 11,     // b: ColourRequest
  HostOpQueryRegistered = 12,  //
  HostOpProgress = 13,         // a: step; b: total
  HostOpSetBackground = 15,    // object: file; a: kBackgroundColour or kBackgroundIndex
  HostOpOpenAnimation = 16,    // b: AnimationRequest; result: an AnimationBlock handle
  HostOpGetSetting = 17,       // b: key text; result: a HostSetting pointer
  HostOpBeginWork = 18,        //
  HostOpFileDialogSize = 21,   // b: two i32, width and height, filled by the host
};

// HostRecord.capabilities
constexpr uint32_t kHostIndexed = 1u << 0;            // palette images; delays in 1/100 s
constexpr uint32_t kHostTrueColourOffered = 1u << 1;  // True color may stay as the user left it

// Argument a of HostOpSetBackground.
constexpr uint64_t kBackgroundColour = 100;  // b: 0x00BBGGRR
constexpr uint64_t kBackgroundIndex = 101;   // b: palette index

#pragma pack(push, 1)

struct PluginParams {
  uint32_t size;  // set by the host and preserved
  uint32_t version;
  char name[261];
  char credit[64];
};
static_assert(offsetof(PluginParams, size) == 0 && offsetof(PluginParams, version) == 4);
static_assert(offsetof(PluginParams, name) == 8 && offsetof(PluginParams, credit) == 269);
static_assert(sizeof(PluginParams) == 333);

// Owned by the host. Bytes 0-3, 8-15 and 24-31 belong to the host and are never read.
struct HostRecord {
  uint32_t hostOwned0;
  uint32_t version;  // bits 8 to 15: the major interface level
  uint64_t hostOwned1;
  HostService service;
  uint64_t hostOwned2;
  uint32_t capabilities;
};
static_assert(offsetof(HostRecord, version) == 4 && offsetof(HostRecord, service) == 16);
static_assert(offsetof(HostRecord, capabilities) == 32 && sizeof(HostRecord) == 36);

// Argument b of HostOpCreateFile and HostOpCreateTestFile; its address names the file afterwards.
struct FileObjectRecord {
  uint32_t size;  // 1080
  uint32_t version;
  WindowHandle owner;
  uint32_t reserved0;
  int32_t bits;  // 1 to 8, or 24
  int32_t width;
  int32_t height;
  uint8_t palette[768];  // 256 RGB triples, red first
  int32_t reserved1;
  int32_t frameCount;
  uint8_t reserved2[264];
  int32_t transparentIndex;
  uint8_t reserved3[4];
};
static_assert(offsetof(FileObjectRecord, size) == 0 && offsetof(FileObjectRecord, version) == 4);
static_assert(offsetof(FileObjectRecord, owner) == 8 &&
              offsetof(FileObjectRecord, reserved0) == 16);
static_assert(offsetof(FileObjectRecord, bits) == 20 && offsetof(FileObjectRecord, width) == 24);
static_assert(offsetof(FileObjectRecord, height) == 28 &&
              offsetof(FileObjectRecord, palette) == 32);
static_assert(offsetof(FileObjectRecord, reserved1) == 800);
static_assert(offsetof(FileObjectRecord, frameCount) == 804);
static_assert(offsetof(FileObjectRecord, reserved2) == 808);
static_assert(offsetof(FileObjectRecord, transparentIndex) == 1072);
static_assert(offsetof(FileObjectRecord, reserved3) == 1076 && sizeof(FileObjectRecord) == 1080);

// Argument b of HostOpAddImage. The host copies the image; the plug-in frees its own.
struct ImageRecord {
  uint32_t size;  // 112
  uint32_t version;
  MovableHandle image;
  uint32_t reserved0;
  int32_t transparent;
  uint64_t reserved1;
  int32_t delay;  // 1/100 s for an indexed host, else milliseconds
  int32_t index;
  int32_t transparentIndex;
  uint8_t reserved2[68];
};
static_assert(offsetof(ImageRecord, size) == 0 && offsetof(ImageRecord, version) == 4);
static_assert(offsetof(ImageRecord, image) == 8 && offsetof(ImageRecord, reserved0) == 16);
static_assert(offsetof(ImageRecord, transparent) == 20 && offsetof(ImageRecord, reserved1) == 24);
static_assert(offsetof(ImageRecord, delay) == 32 && offsetof(ImageRecord, index) == 36);
static_assert(offsetof(ImageRecord, transparentIndex) == 40);
static_assert(offsetof(ImageRecord, reserved2) == 44 && sizeof(ImageRecord) == 112);

// Argument b of HostOpChooseColour.
struct ColourRequest {
  uint32_t size;  // 40
  uint32_t version;
  uint8_t* palette;  // 768 bytes of swatches
  uint32_t bits;     // 24
  uint32_t reserved0;
  uint32_t colour;  // in: current; out: chosen. 0x00BBGGRR
  uint32_t reserved1;
  WindowHandle owner;
};
static_assert(offsetof(ColourRequest, size) == 0 && offsetof(ColourRequest, version) == 4);
static_assert(offsetof(ColourRequest, palette) == 8 && offsetof(ColourRequest, bits) == 16);
static_assert(offsetof(ColourRequest, reserved0) == 20 && offsetof(ColourRequest, colour) == 24);
static_assert(offsetof(ColourRequest, reserved1) == 28 && offsetof(ColourRequest, owner) == 32);
static_assert(sizeof(ColourRequest) == 40);

constexpr uint32_t kAnimationRequestMagic = 0x414E4D70;
constexpr uint32_t kAnimationBlockMagic = 0x414E4D6F;
constexpr uint32_t kAnimationEntryMagic = 0x414E4D65;
constexpr uint32_t kAnimationEndMagic = 0x414E4D78;

// Argument b of HostOpOpenAnimation.
struct AnimationRequest {
  uint32_t magic;  // kAnimationRequestMagic
  uint32_t size;   // 352
  uint32_t version;
  uint32_t mode;  // 1
  WindowHandle owner;
  char path[328];  // at most 260 characters; empty asks the user. Out: the path chosen
};
static_assert(offsetof(AnimationRequest, magic) == 0);
static_assert(offsetof(AnimationRequest, size) == 4 && offsetof(AnimationRequest, version) == 8);
static_assert(offsetof(AnimationRequest, mode) == 12 && offsetof(AnimationRequest, owner) == 16);
static_assert(offsetof(AnimationRequest, path) == 24 && sizeof(AnimationRequest) == 352);

// The pieces of an AnimationBlock, the result of HostOpOpenAnimation: a head, entries each followed
// by a Packed DIB, and an end mark. Each piece is found from the one before by its sizes.
struct AnimationBlockHead {
  uint32_t magic;       // kAnimationBlockMagic
  uint32_t headerSize;  // offset of the first entry from the head
  uint32_t reserved[2];
  uint32_t entryCount;
};
static_assert(offsetof(AnimationBlockHead, magic) == 0 &&
              offsetof(AnimationBlockHead, headerSize) == 4);
static_assert(offsetof(AnimationBlockHead, entryCount) == 16 && sizeof(AnimationBlockHead) == 20);

struct AnimationBlockEntry {
  uint32_t magic;       // kAnimationEntryMagic
  uint32_t headerSize;  // offset of the entry's Packed DIB from the entry
  uint32_t reserved[2];
  uint32_t dataSize;  // bytes of the Packed DIB; the next piece follows it
};
static_assert(offsetof(AnimationBlockEntry, magic) == 0 &&
              offsetof(AnimationBlockEntry, headerSize) == 4);
static_assert(offsetof(AnimationBlockEntry, dataSize) == 16 && sizeof(AnimationBlockEntry) == 20);

struct AnimationBlockEnd {
  uint32_t magic;  // kAnimationEndMagic
};
static_assert(offsetof(AnimationBlockEnd, magic) == 0 && sizeof(AnimationBlockEnd) == 4);

// What HostOpGetSetting points to: owned by the host, shaped like a row of the settings table.
struct HostSetting {
  const char* key;
  void* value;
  uint32_t flags;  // kHostSettingInteger: value points to an i32
  uint32_t aux;
  uint64_t reserved;
};
static_assert(offsetof(HostSetting, key) == 0);
static_assert(offsetof(HostSetting, value) == 8 && offsetof(HostSetting, flags) == 16);
static_assert(sizeof(HostSetting) == 32);
constexpr uint32_t kHostSettingInteger = 4;

#pragma pack(pop)

// The host of the running dialog, kept for the life of one use of the plug-in; null otherwise.
extern HostRecord* CurrentHost;

// Calls the current host's service; 0 when there is no host or no service.
uint64_t CallHost(void* object, int32_t opcode, uint64_t a, uint64_t b);

// Nonzero when bits 8 to 15 of a HostRecord.version are at least kMinimumHostLevel. Only that byte
// counts: what stands above it is ignored.
int HostVersionSupported(uint32_t version);

// Saves params->size, zeroes that many bytes, restores it and fills name, credit and version.
// The fields are written whatever the size says: the host sets it to the full record.
int FillPluginParams(PluginParams* params);

// The 256 swatches offered by HostOpChooseColour: an 8 x 8 x 4 cube of red, green and blue levels.
void BuildSwatchTable(uint8_t palette[768]);

// Nonzero when `bytes` hold a well-formed AnimationBlock: the head's magic, up to entryCount
// entries each with its magic and a Packed DIB starting with a 40-byte header size, and an end mark
// (met after the last entry, or earlier). Every piece must lie inside `size`.
int CheckAnimationBlock(const uint8_t* bytes, size_t size);

// Writes the help topic for HostOpShowHelp into `topic` (capacity `capacity`): the help document,
// then "#" and `name` when a name is given. Returns 0 when it does not fit.
int FormatHelpTopic(const char* name, char* topic, size_t capacity);

extern const char kPluginName[];
extern const char kPluginCredit[];
extern const char kHelpDocument[];
// The topics the plug-in asks the host to show in the help document: anchors the document must
// have. The Help button of the main dialog opens the preface.
extern const char kHelpTopicPreface[];
extern const char* const kHelpTopics[];
extern const int32_t kHelpTopicCount;
// The comment block that HostOpAddComment receives when Add comment is on.
extern const char kCommentText[];
