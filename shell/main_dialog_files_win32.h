// Open and Save of effect documents from the main dialog: the Open/Save popup menu and the common
// file dialogs with their hook, which sizes each file dialog to the size kept from the last one.
// Windows-only.
#pragma once

#include <windows.h>

// Menu ids of the Open/Save popup.
constexpr int kCommandOpen = 37;
constexpr int kCommandSave = 38;
constexpr int kCommandSaveAs = 39;

// Keeps the file dialogs' size, as the host gave it, clamped to the screen.
void SetFileDialogSize(int width, int height);
// Shows the popup menu with Open, Save and Save as... at the cursor; its choice comes back to
// `dialog` as a command.
void ShowOpenSaveMenu(HWND dialog);
// Open: a document chosen by the user is read into the dialog. Save: the current document is
// written, or asked for as by Save as while it is still untitled. Save as: the user names it.
void OpenDocument(HWND dialog);
void SaveCurrentDocument(HWND dialog);
void SaveDocumentAs(HWND dialog);
