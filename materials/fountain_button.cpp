// Files and document lines of the fountain button.
#include "materials/fountain_button.h"

#include <cstdio>
#include <cstring>

#include "materials/data_folder.h"
#include "materials/record_hex.h"
#include "platform/memory.h"

namespace {

// The name span is the one the button borrows for its run-time fields; a record read from
// outside keeps only the name's first 261 bytes (260 characters and the terminator).
constexpr size_t kNameKept = 261;

}  // namespace

void ClearFountainRunTime(FountainGradient* gradient) {
  std::memset(gradient->name + kNameKept - 1, 0, sizeof(gradient->name) - (kNameKept - 1));
  std::memset(gradient->spare, 0, sizeof(gradient->spare));
}

namespace {

// The strip handle sits in the last 8 bytes of the name span, the pointer's state in the spare.
constexpr size_t kStripAt = sizeof(FountainGradient::name) - sizeof(MovableHandle);
constexpr size_t kPointerFields = 4;
static_assert(kStripAt >= kNameKept - 1);
static_assert(kPointerFields * sizeof(int32_t) <= sizeof(FountainGradient::spare));

}  // namespace

void GetFountainRunTime(const FountainGradient* gradient, FountainRunTime* state) {
  std::memcpy(&state->strip, gradient->name + kStripAt, sizeof state->strip);
  int32_t fields[kPointerFields];
  std::memcpy(fields, gradient->spare, sizeof fields);
  state->hotMarker = fields[0];
  state->dragging = fields[1];
  state->dragStartX = fields[2];
  state->dragLastX = fields[3];
}

void SetFountainRunTime(FountainGradient* gradient, const FountainRunTime* state) {
  std::memcpy(gradient->name + kStripAt, &state->strip, sizeof state->strip);
  const int32_t fields[kPointerFields] = {state->hotMarker, state->dragging, state->dragStartX,
                                          state->dragLastX};
  std::memcpy(gradient->spare, fields, sizeof fields);
}

MovableHandle MakeFountainRecord(int32_t controlId, int useFile, int shiftHeld,
                                 const FountainGradient* copy, int looped) {
  ScopedBlock block(MovableAlloc(kFountainSize));
  {
    ScopedLock lock(block.handle);
    if (!lock) return nullptr;
    FountainGradient* gradient = reinterpret_cast<FountainGradient*>(lock.bytes);
    char path[1024];
    const int read = useFile && !shiftHeld && FountainFilePath(controlId, path, sizeof path) &&
                     ReadFountainFile(path, gradient);
    if (!read && copy) {
      std::memcpy(gradient, copy, kFountainSize);
      ClearFountainRunTime(gradient);
    } else if (!read) {
      std::memset(gradient, 0, kFountainSize);
      InitFountainGradient(gradient, 2);
    }
    if (looped) gradient->flags |= kFountainLooped;
    if (useFile) gradient->flags |= kFountainOwnFile;
    FountainRunTime state = {nullptr, -1, 0, 0, 0};
    SetFountainRunTime(gradient, &state);
  }
  return block.Release();
}

int FountainFilePath(int32_t controlId, char* path, size_t size) {
  char name[32];
  std::snprintf(name, sizeof name, "Fountain%05.5d.mtrl", controlId);
  return DataFilePath(name, path, size);
}

int ReadFountainFile(const char* path, FountainGradient* gradient) {
  std::FILE* file = path && path[0] ? std::fopen(path, "rb") : nullptr;
  if (!file) return 0;
  FountainGradient read;
  const size_t got = std::fread(&read, 1, sizeof read, file);
  std::fclose(file);
  if (got != sizeof read || std::memcmp(read.magic, "COBLFOUN", 8) != 0 ||
      read.markerCount > kFountainMarkers)
    return 0;
  ClearFountainRunTime(&read);
  *gradient = read;
  return 1;
}

int WriteFountainFile(const char* path, const FountainGradient* gradient) {
  std::FILE* file = path && path[0] ? std::fopen(path, "wb") : nullptr;
  if (!file) return 0;
  FountainGradient out = *gradient;
  ClearFountainRunTime(&out);
  const size_t written = std::fwrite(&out, 1, sizeof out, file);
  const int closed = std::fclose(file) == 0;
  if (written == sizeof out && closed) return 1;
  std::remove(path);
  return 0;
}

std::string FountainDocumentLine(int32_t controlId, const FountainGradient* gradient) {
  FountainGradient out = *gradient;
  ClearFountainRunTime(&out);
  std::string line = kFountainLineKey + std::to_string(controlId) + "=";
  AppendHexBytes(&line, reinterpret_cast<const uint8_t*>(&out), sizeof out);
  line += '\n';
  return line;
}

int ReadFountainDocumentLine(const char* line, FountainGradient* gradient) {
  if (!line || !gradient) return 0;
  if (std::strncmp(line, kFountainLineKey, sizeof(kFountainLineKey) - 1) != 0) return 0;
  const char* text = std::strchr(line, '=');
  if (!text) return 0;
  while (*text == '=' || *text == ' ' || *text == '\t') ++text;
  FountainGradient read;
  std::memset(&read, 0, sizeof read);
  if (!ReadHexBytes(text, reinterpret_cast<uint8_t*>(&read), sizeof read)) return 0;
  if (read.markerCount > kFountainMarkers) return 0;
  ClearFountainRunTime(&read);
  *gradient = read;
  return 1;
}

int CreateFountainForButton(WindowHandle button, uint32_t) {
  if (!button) return 0;
  if (DialogGetUserData(button)) return 1;
  ScopedBlock block(MovableAlloc(kFountainSize));
  {
    ScopedLock lock(block.handle);
    if (!lock) return 0;
    FountainGradient* gradient = reinterpret_cast<FountainGradient*>(lock.bytes);
    std::memset(gradient, 0, sizeof *gradient);
    InitFountainGradient(gradient, 2);
  }
  DialogSetUserData(button, block.Release());
  return 1;
}

int FountainButtonTakeLine(WindowHandle button, const char* line) {
  MovableHandle handle = button ? static_cast<MovableHandle>(DialogGetUserData(button)) : nullptr;
  ScopedLock lock(handle);
  if (!lock) return 0;
  return ReadFountainDocumentLine(line, reinterpret_cast<FountainGradient*>(lock.bytes));
}

size_t FountainButtonFormatLine(WindowHandle button, char* line, size_t size) {
  MovableHandle handle = button ? static_cast<MovableHandle>(DialogGetUserData(button)) : nullptr;
  ScopedLock lock(handle);
  if (!lock || !line) return 0;
  std::string text = FountainDocumentLine(DialogItemId(button),
                                          reinterpret_cast<const FountainGradient*>(lock.bytes));
  text.pop_back();  // the caller ends the line
  if (text.size() + 1 > size) return 0;
  std::memcpy(line, text.c_str(), text.size() + 1);
  return text.size();
}

void FreeFountainOfButton(WindowHandle button) {
  if (!button) return;
  MovableFree(static_cast<MovableHandle>(DialogGetUserData(button)));
  DialogSetUserData(button, nullptr);
}

int ButtonFountain(WindowHandle button, FountainGradient* gradient) {
  if (!button || !gradient || DialogControlKind(button) != kControlFountainButton) return 0;
  MovableHandle handle = static_cast<MovableHandle>(DialogGetUserData(button));
  if (!handle || MovableSize(handle) < kFountainSize) return 0;
  ScopedLock lock(handle);
  if (!lock) return 0;
  std::memcpy(gradient, lock.bytes, kFountainSize);
  ClearFountainRunTime(gradient);
  return 1;
}
