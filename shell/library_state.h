// What the library keeps between two uses of the plug-in: its instance handle and its folder
// strings (the settings table lives with the settings). Paths are 260 characters and a terminator,
// in the system's 8-bit code page, folders ending with a backslash.
#pragma once

// The library's instance handle, the source of every resource; stored by the library's entry on
// every call. Null in a program that links the code directly: its own module is used then.
extern void* ModuleInstance;

// The folder of the library's own file.
extern char PluginFolder[261];
// The folder that file dialogs open in; the documents folder until the user picks another.
extern char OpenPath[261];

// The three fonts that all dialogs share during one use: Arial 14, MS Sans Serif 14, Arial 12
// (cell heights in pixels). Made and deleted by the library's entry; null between uses.
extern void* DialogFonts[3];
