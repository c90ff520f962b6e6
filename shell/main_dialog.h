// The main dialog, resource 1000: the plug-in's whole user interface, run modally by the entry
// point with the host's record as its parameter.
#pragma once

#include <cstdint>

#include "platform/dialog.h"
#include "shell/host_interface.h"

// Private messages of the main dialog.
constexpr uint32_t kMessageAfterStart = 1224;  // after start and after a document load
// Posted in place of kMessageAfterStart when the start failed.
constexpr uint32_t kMessageStartFailed = 2;

// The host's SoftButtons setting: nonzero asks for the skinned look of push buttons.
extern int32_t SoftButtons;

// Runs dialog 1000 modally over `parent`. Returns the value the dialog ended with: 1 after a
// build, 0 after Cancel, -1 when the dialog could not be made.
int64_t RunMainDialog(WindowHandle parent, HostRecord* host);
