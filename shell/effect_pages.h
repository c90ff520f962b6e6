// The effect pages' init procedure, one for all rows: the page dialog 7400 + style is made again
// in the main dialog as hidden twins of its controls, which then get their kinds and their values
// from the settings. Each row's `init` is this procedure for its style.
#pragma once

#include <cstdint>

#include "shell/effect_table.h"

// Makes and fills the controls of the page of `style` in `dialog`. Returns 0 when the page can't
// be made or a control can't be given its value.
int InitEffectPage(WindowHandle dialog, int32_t style);

template <int32_t Style>
int EffectPageInit(BuildContext* context) {
  return context ? InitEffectPage(context->dialog, Style) : 0;
}
