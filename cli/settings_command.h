// gm5's handling of the settings: where a run starts (the configuration file, or the built-in
// defaults), the --set options, and the listing of `gm5 settings` with each value beside its
// default.
#pragma once

#include <cstdio>
#include <string>

#include "cli/command_line.h"

// Sets the setting `key` from the text `value`: integers and booleans (0 or 1) as whole decimal
// numbers, strings up to 260 characters. Returns 0 with a one-line `error` for an unknown key or a
// bad value.
int ApplySettingText(const std::string& key, const std::string& value, std::string* error);

// Starts from the defaults (--defaults) or the configuration file, then applies every --set in
// order. Returns 0 with a one-line `error` at the first that fails.
int PrepareSettings(const CommandLine& line, std::string* error);

// Writes "KEY=VALUE (default DEFAULT)" lines to `out`: every setting in table order, or only
// `key` when it is not empty. The registration rows are left out. Returns 0 with `error` for an
// unknown key.
int PrintSettings(FILE* out, const std::string& key, std::string* error);
