// The Matrix dialog's working state and the steps it takes, apart from its window: a private copy
// of the Material's tile part, the current group's tiles, and picking, adding and deleting tiles
// and groups. The state owns the copy's image and every tile of the list until it is ended.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "materials/tile.h"
#include "materials/tile_file.h"

constexpr int32_t kMatrixDialogId = 9981;
constexpr int32_t kMatrixNameDialogId = 9967;
constexpr int32_t kMatrixTileLargest = 512;  // a tile wider and taller than this is refused

constexpr char kMatrixTooLarge[] = "The selected image is too large to be a matrix tile.";
constexpr char kMatrixAddFailed[] = "There has been an error adding your matrix tile.";
constexpr char kMatrixLoadFailed[] = "There has been an error loading the matrix element file.";
constexpr char kMatrixNotWriteable[] =
    "This file cannot be edited or overwritten.\n\nThe default matix set cannot be modified. To "
    "edit this file, save it to a new name. Hold down the Shift key and click on the + button.";
constexpr char kMatrixPrimaryKept[] = "The primary matrix group cannot be deleted.";
constexpr char kMatrixDeleteQuestion[] =
    "Do you want to delete the %s matrix group?\n\nClick on Yes to delete this file, or No to "
    "abort.";
constexpr char kMatrixUntitled[] = "Untitled";
constexpr char kMatrixSizeFormat[] = "%d x %d";

struct MatrixDialogState {
  TileRef tile = {};  // the copy that OK hands back
  TileList list;
  int32_t dirty = 0;  // the group changed since it was read
};

// What adding a picture came to; anything but kTileAdded has a message to show.
enum MatrixAddResult : int32_t {
  kTileAdded = 0,
  kTileTooLarge = 1,     // kMatrixTooLarge
  kTileMemoryError = 2,  // string 6, "Memory error"
  kTileNotAdded = 3,     // kMatrixAddFailed
};

// Starts a run on a copy of `tile` and reads the current group. Returns 0 when the copy fails
// (nothing is held then); `*groupRead` is ReadMatrixFile's result.
int BeginMatrixDialog(MatrixDialogState* state, const TileRef* tile, int* groupRead);
// Ends the run. With `accept`, a dirty group is written first (its result ignored: the backup
// holds the old state), the copy takes the current group's path, the old image of `target` is
// freed and the copy replaces it. Otherwise the copy's image is freed and `target` untouched.
// Every tile of the list is freed.
void EndMatrixDialog(MatrixDialogState* state, int accept, TileRef* target);

// Picks the tile at `position`: `index` becomes the position and `image` a duplicate of the tile.
// Returns 0, with the old pick kept, when there is no such tile or memory fails.
int PickMatrixTile(MatrixDialogState* state, int32_t position);
// Adds a picture the host loaded, which the state takes over (freeing it when it is refused):
// pictures wider and taller than 512 are refused, others made 24-bit and appended.
MatrixAddResult AddMatrixTile(MatrixDialogState* state, MovableHandle picture);
// Deletes the tile at `position` and frees it; returns the position to select next (the same, or
// the new last; -1 when the list is empty), or -2 when there is no such tile.
int32_t DeleteMatrixTile(MatrixDialogState* state, int32_t position);

// The groups of the data folder: the names of its files whose extension is "MTX" in any case,
// without the extension, sorted.
std::vector<std::string> ListMatrixGroups();
// The group name of the current MatrixLibrary, without its extension.
std::string CurrentMatrixGroup();
// Makes the group `name` current (MatrixLibrary becomes "name.MTX") and reads it; ReadMatrixFile's
// result. The list is kept as it was when the group can't be opened.
int OpenMatrixGroup(MatrixDialogState* state, const char* name);
// Writes the list to a new group `name`, which becomes current and writeable. Returns 1, or 0
// with the current group unchanged when the file can't be written.
int SaveMatrixGroupAs(MatrixDialogState* state, const char* name);
// After the current group's file went: the primary group becomes current again and is read.
int ReturnToPrimaryGroup(MatrixDialogState* state);
