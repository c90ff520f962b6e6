// Texture groups (".fft"): a named collection of texture recipes kept as line-based text, one
// "Key=value" to a line, so a user can read it. A magic line and four comment lines open the
// file, header keys follow, then each item between ":BEGINITEM" and ":ENDITEM". Items keep their
// recipe, never their pixels; fields without a key take their defaults when read.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <vector>

#include "materials/tile_file.h"
#include "platform/memory.h"

constexpr char kTextureDefaultFile[] = "rfdplgm5.fft";
constexpr char kTextureExtension[] = "FFT";
constexpr size_t kTextureNameSize = 261;  // 260 characters and the terminator
constexpr size_t kTextureLineLimit = 8192;

// One row of a group: the name shown in the list and its TextureItem block, owned by the list.
struct TextureEntry {
  char name[kTextureNameSize];
  MovableHandle item;
};

// The group the Texture dialog shows, kept sorted by name so the file order is the list order.
// `writeable` is changed only by a "Writeable" line or by the dialog when it makes a new group; it
// is not reset by a read, so a file without that line keeps the flag of the group before it.
struct TextureList {
  std::vector<TextureEntry> entries;
  int32_t writeable = 0;
};

// Frees every block of the list and empties it; the writeable flag is kept.
void ClearTextureList(TextureList* list);
// Inserts `name` (cut to 260 characters) at its sorted place, ignoring case, with `item` attached.
// Returns the index plus one, or 0 when the list can't grow; the block stays the caller's then.
size_t AddTextureEntry(TextureList* list, const char* name, MovableHandle item);
// Removes and frees the entry at `index`. Returns 0 for an index past the end.
int RemoveTextureEntry(TextureList* list, size_t index);

// Replaces the list's items with those of an open text file and takes its writeable flag.
// Returns 0, leaving the list untouched, when the first line isn't the magic line; 0 when an item
// can't be allocated or the file ends inside an item (what was read until then stays in the
// list); 1 otherwise.
int ReadTextureFrom(std::FILE* file, TextureList* list);
// The same from `path`; 0 when the file can't be opened.
int ReadTextureFileAt(const char* path, TextureList* list);
// Writes the list as a group stamped with `time` and `names` (null for none). An empty list
// gives an empty file. Entries whose block doesn't lock are left out. Returns 0 when a write
// falls short.
int WriteTextureTo(std::FILE* file, const TextureList* list, int64_t time, const MatrixOwner* names);
// Keeps the old file as "<path>.bak" and writes the list to `path`; 0 when it can't be opened.
int WriteTextureFileAt(const char* path, const TextureList* list, int64_t time,
                       const MatrixOwner* names);

// The full path of the current group, the setting DefaultTextureFileName in the data folder.
int CurrentTexturePath(char* path, size_t size);
// ReadTextureFileAt and WriteTextureFileAt on the current group, stamped with this machine's
// names and the time now.
int ReadTextureFile(TextureList* list);
int WriteTextureFile(const TextureList* list);
