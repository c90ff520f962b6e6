// The library's globals: what it keeps between two uses of the plug-in (its instance handle and its
// folder strings; the settings table lives with the settings), and the shared state of the use in
// hand. Paths are 260 characters and a terminator, in the system's 8-bit code page, folders ending
// with a backslash.
#pragma once

#include <cstddef>

#include <cstdint>

// The library's instance handle, the source of every resource; stored by the library's entry on
// every call. Null in a program that links the code directly: its own module is used then.
extern void* ModuleInstance;

// The folder of the library's own file.
extern char PluginFolder[261];
// The folder that file dialogs open in, 260 characters and the terminator: the `OpenPath` setting
// itself, so that the documents folder set at start is saved and a folder read from the
// configuration is where the dialogs open.
char* OpenPath();
constexpr size_t kOpenPathSize = 261;

// The three fonts that all dialogs share during one use: Arial 14, MS Sans Serif 14, Arial 12
// (cell heights in pixels). Made and deleted by the library's entry; null between uses.
extern void* DialogFonts[3];

// The host's SoftButtons setting, read at each dialog start: nonzero asks for the skinned look of
// push buttons.
extern int32_t SoftButtons;
