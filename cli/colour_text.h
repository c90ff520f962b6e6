// Colours as a user types them: #RRGGBB, #RGB, a CSS/X11 colour name (any case), or the engine's
// own form, a decimal (or 0x hexadecimal) number 0xBBGGRR.
#pragma once

#include <cstdint>
#include <string>

// Reads `text` into `colour` as 0x00BBGGRR. Returns 0 for anything else.
int ParseColourText(const std::string& text, uint32_t* colour);
// The forms ParseColourText takes, for messages.
inline constexpr const char kColourForms[] =
    "#RRGGBB, #RGB, a CSS colour name such as navy, or a number 0xBBGGRR";
