// The one init procedure of the effect rows: clone the page through the dialog port, then set up
// its twins from the page table and the settings.
#include "shell/effect_pages.h"

#include "controls/page_setup.h"
#include "controls/page_tables.h"

int InitEffectPage(WindowHandle dialog, int32_t style) {
  if (!dialog || style < 0 || style >= kEffectCount) return 0;
  if (!DialogClonePage(dialog, kEffectPageBase + style)) return 0;
  return SetUpPageTwins(dialog, kPageTables[style]);
}
