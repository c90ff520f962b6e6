// The About box: the product's name, version and credits, opened by the main dialog's Register
// and About buttons. The product is free, so this is all that registration shows. Windows-only.
#pragma once

#include <windows.h>

// Runs the box modally over `owner`.
void ShowAboutBox(HWND owner);
