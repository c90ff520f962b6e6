// Matrix files (".mtx"): a group of tile pictures. A 1082-byte header ("COBLMTXf", the time, the
// machine's owner, organisation and registration name, version 16.0a, the tile count and the
// writeable flag) is followed by one item per tile: a 72-byte item header ("MTXi", the data size)
// and the tile's Packed DIB byte for byte. Little-endian; every byte not named is zero. The reader
// accepts any Packed DIB; the writer stores whatever blocks the list holds. The caller owns every
// block it passes in or gets back.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <vector>

#include "platform/memory.h"

constexpr size_t kMatrixHeaderSize = 1082;
constexpr size_t kMatrixItemHeaderSize = 72;
constexpr size_t kMatrixNameBytes = 262;
constexpr char kMatrixDefaultFile[] = "rfdplgm5.mtx";
constexpr char kMatrixExtension[] = "MTX";

// Where the fields of the file header stand.
enum MatrixHeaderOffset : size_t {
  kMatrixTimeAt = 8,
  kMatrixOwnerAt = 12,
  kMatrixOrganisationAt = 274,
  kMatrixRegistrationNameAt = 536,
  kMatrixRegisteredAt = 798,
  kMatrixVersionMajorAt = 802,
  kMatrixVersionMinorAt = 806,
  kMatrixVersionLetterAt = 810,
  kMatrixTileCountAt = 818,
  kMatrixWriteableAt = 822,
};

// The names the writer stamps into a header.
struct MatrixOwner {
  char owner[kMatrixNameBytes];
  char organisation[kMatrixNameBytes];
  char registrationName[kMatrixNameBytes];
};

// The tiles of one group in file order, as the Matrix dialog holds them. The list owns its blocks.
struct TileList {
  std::vector<MovableHandle> tiles;
  int32_t writeable = 1;  // the header's flag: 0 protects a group from every change
};

// Frees every block of the list and empties it.
void ClearTileList(TileList* list);

// Writes a header of `tileCount` tiles stamped with `time` and `names` (all empty for null).
void MakeMatrixHeader(uint8_t* header, uint32_t time, const MatrixOwner* names, uint32_t tileCount);
// The owner, organisation and registration name of this machine and user, for a new header.
void CurrentMatrixOwner(MatrixOwner* names);

// The tile at `index` (from 0) of an open file as a new block, or null: a short or wrong header,
// no tiles, an index past the last item, a short item or a failed allocation. Items with a wrong
// magic are skipped but counted. The file is read from its current position and left open.
MovableHandle LoadTileFrom(std::FILE* file, uint32_t index);
// The same from the file at `path`.
MovableHandle LoadTile(const char* path, uint32_t index);

// Replaces the list's tiles with those of an open file and takes its writeable flag. Returns 0 on
// a short or wrong header, a short item or a failed allocation; the tiles read until then stay in
// the list. Items with a wrong magic are passed over.
int ReadMatrixFrom(std::FILE* file, TileList* list);
// The same from `path`. A file that can't be opened is an empty group: 1, with the list untouched.
int ReadMatrixFileAt(const char* path, TileList* list);
// Writes the list to `path` after keeping the old file as "<path>.bak": the header, each tile with
// its item header, then the header again with the count of tiles written. Blocks that don't lock
// are left out. Returns 0 when the file can't be made or a write falls short, leaving it as far as
// it got.
int WriteMatrixFileAt(const char* path, const TileList* list, uint32_t time,
                      const MatrixOwner* names);

// The full path of the current group, the setting MatrixLibrary in the data folder; 0 when there
// is none.
int CurrentMatrixPath(char* path, size_t size);
// ReadMatrixFileAt and WriteMatrixFileAt on the current group, stamped with this machine's names
// and the time now.
int ReadMatrixFile(TileList* list);
int WriteMatrixFile(const TileList* list);
