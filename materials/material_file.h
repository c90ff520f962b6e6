// The material button's own file, "Material%05.5d.mtrl" by control id in the plug-in's data
// folder: 1270 bytes, the record without its run-time handles and with the marker list in its
// 581-byte file form. A file that is short or has the wrong magic leaves the defaults in place; a
// short write deletes the file. The caller owns every block passed in or returned.
#pragma once

#include <cstddef>
#include <cstdint>

#include "materials/material.h"
#include "platform/memory.h"

constexpr uint32_t kMaterialFileSize = 1270;
constexpr uint32_t kFountainFileSize = 581;

// Translates the record to the file form (kMaterialFileSize bytes), field by field. A tile path of
// 260 characters or more is cut to 260.
void MaterialToFileForm(const Material* material, uint8_t* file);
// Translates a file form back over `material`, replacing the whole record: handles null, the
// marker list's size 585. Returns 0 and leaves `material` alone when the magic is wrong.
int MaterialFromFileForm(const uint8_t* file, Material* material);

// The full path of the button file of `controlId`; 0 with `path` empty when there is no data
// folder or the path doesn't fit.
int MaterialFilePath(int32_t controlId, char* path, size_t size);
// Reads a whole file over `material`; 0 when it can't be opened, is short or has the wrong magic.
int ReadMaterialFile(const char* path, Material* material);
// Writes the file form; a file that can't be written whole is deleted. Returns 1 or 0.
int WriteMaterialFile(const char* path, const Material* material);

// A new button record: the defaults with `creationColour` as its Simple colour, replaced by the
// button's file unless `ignoreFile` (Shift held). Handles cleared, then the tile loaded from the
// current matrix group (ReloadMaterialTile). Null when memory fails.
MovableHandle LoadButtonMaterial(int32_t controlId, uint32_t creationColour, int ignoreFile);
// Frees the record's images, writes it to the button's file and frees the block. Returns 1 when
// the file was written. A null handle writes nothing.
int SaveButtonMaterial(int32_t controlId, MovableHandle material);
