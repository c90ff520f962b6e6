// The Matrix dialog's steps on its state. Group names travel without their extension; the setting
// MatrixLibrary holds the file name, which is the name with ".MTX" appended.
#include "materials/matrix_dialog.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <new>
#include <system_error>

#include "documents/settings.h"
#include "materials/data_folder.h"
#include "shell/packed_dib.h"

namespace {

void SetMatrixLibrary(const char* file) {
  if (char* setting = SettingString("MatrixLibrary"))
    std::snprintf(setting, kSettingTextSize, "%s", file);
}

int HasMatrixExtension(const std::string& name) {
  if (name.size() < 5 || name[name.size() - 4] != '.') return 0;
  for (size_t i = 0; i < 3; ++i)
    if (std::toupper(static_cast<unsigned char>(name[name.size() - 3 + i])) != kMatrixExtension[i])
      return 0;
  return 1;
}

}  // namespace

int BeginMatrixDialog(MatrixDialogState* state, const TileRef* tile, int* groupRead) {
  state->dirty = 0;
  state->list.writeable = 1;  // a group that isn't there yet may be made
  if (!CopyTileRef(&state->tile, tile)) return 0;
  *groupRead = ReadMatrixFile(&state->list);
  return 1;
}

void EndMatrixDialog(MatrixDialogState* state, int accept, TileRef* target) {
  if (accept) {
    if (state->dirty) WriteMatrixFile(&state->list);
    char path[kDataPathSize];
    if (CurrentMatrixPath(path, sizeof path)) {
      std::memset(state->tile.path, 0, sizeof state->tile.path);
      std::memcpy(state->tile.path, path, strnlen(path, sizeof state->tile.path - 1));
    }
    MovableFree(target->image);
    *target = state->tile;
  } else {
    MovableFree(state->tile.image);
  }
  state->tile.image = nullptr;
  ClearTileList(&state->list);
}

int PickMatrixTile(MatrixDialogState* state, int32_t position) {
  if (position < 0 || static_cast<size_t>(position) >= state->list.tiles.size()) return 0;
  MovableHandle image = DuplicateHandle(state->list.tiles[static_cast<size_t>(position)]);
  if (!image) return 0;
  MovableFree(state->tile.image);
  state->tile.image = image;
  state->tile.index = static_cast<uint32_t>(position);
  return 1;
}

MatrixAddResult AddMatrixTile(MatrixDialogState* state, MovableHandle picture) {
  ScopedBlock owned(picture);
  int32_t width = 0, height = 0, bits = 0;
  {
    ScopedLock lock(picture);
    if (!lock || !IsReadablePackedDib(lock.bytes, MovableSize(picture))) return kTileNotAdded;
    const BitmapInfoHeader* h = reinterpret_cast<const BitmapInfoHeader*>(lock.bytes);
    width = h->biWidth;
    height = h->biHeight;
    bits = h->biBitCount;
  }
  // Only a picture too large both ways is refused: a long strip still tiles well.
  if (width > kMatrixTileLargest && height > kMatrixTileLargest) return kTileTooLarge;
  if (bits != 24) {
    MovableHandle converted = ToTrueColour(picture);
    if (!converted) return kTileMemoryError;
    MovableFree(owned.Release());
    owned.handle = converted;
  }
  try {
    state->list.tiles.push_back(owned.handle);
  } catch (const std::bad_alloc&) {
    return kTileNotAdded;
  }
  owned.Release();
  state->dirty = 1;
  return kTileAdded;
}

int32_t DeleteMatrixTile(MatrixDialogState* state, int32_t position) {
  std::vector<MovableHandle>& tiles = state->list.tiles;
  if (position < 0 || static_cast<size_t>(position) >= tiles.size()) return -2;
  MovableFree(tiles[static_cast<size_t>(position)]);
  tiles.erase(tiles.begin() + position);
  state->dirty = 1;
  return std::min(position, static_cast<int32_t>(tiles.size()) - 1);
}

std::vector<std::string> ListMatrixGroups() {
  std::vector<std::string> names;
  char folder[kDataPathSize];
  if (!DataFilePath("", folder, sizeof folder)) return names;
  std::error_code error;
  for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    const std::string name = entry->path().filename().string();
    if (HasMatrixExtension(name)) names.push_back(name.substr(0, name.size() - 4));
  }
  std::sort(names.begin(), names.end());
  return names;
}

std::string CurrentMatrixGroup() {
  const char* setting = SettingString("MatrixLibrary");
  std::string name = setting && setting[0] ? setting : kMatrixDefaultFile;
  if (HasMatrixExtension(name)) name.resize(name.size() - 4);
  return name;
}

int OpenMatrixGroup(MatrixDialogState* state, const char* name) {
  char file[kSettingTextSize];
  std::snprintf(file, sizeof file, "%s.%s", name, kMatrixExtension);
  // Where file names keep their case, the group's own spelling of the extension is used.
  char folder[kDataPathSize];
  std::error_code error;
  if (DataFilePath("", folder, sizeof folder))
    for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
      const std::string found = entry->path().filename().string();
      if (HasMatrixExtension(found) && found.compare(0, found.size() - 4, name) == 0 &&
          std::strlen(name) == found.size() - 4)
        std::snprintf(file, sizeof file, "%s", found.c_str());
    }
  SetMatrixLibrary(file);
  state->list.writeable = 1;
  return ReadMatrixFile(&state->list);
}

int SaveMatrixGroupAs(MatrixDialogState* state, const char* name) {
  char file[kSettingTextSize];
  std::snprintf(file, sizeof file, "%s.%s", name, kMatrixExtension);
  const char* setting = SettingString("MatrixLibrary");
  const std::string previous = setting ? setting : "";
  SetMatrixLibrary(file);
  if (!WriteMatrixFile(&state->list)) {
    SetMatrixLibrary(previous.c_str());  // the group that could not be made never becomes current
    return 0;
  }
  state->list.writeable = 1;
  return 1;
}

int ReturnToPrimaryGroup(MatrixDialogState* state) {
  SetMatrixLibrary(kMatrixDefaultFile);
  state->list.writeable = 1;
  ClearTileList(&state->list);
  return ReadMatrixFile(&state->list);
}
