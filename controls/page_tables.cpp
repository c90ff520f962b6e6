// Look-ups in the page tables: by control id and by setting key, over the pages and the main
// dialog. The tables themselves are constexpr data in the header.
#include "controls/page_tables.h"

#include <cstring>

namespace {

const PageControl* FindIn(const PageTable& table, int32_t id) {
  for (int32_t i = 0; i < table.count; ++i)
    if (table.controls[i].id == id) return &table.controls[i];
  return nullptr;
}

const PageControl* FindKeyIn(const PageTable& table, const char* key) {
  for (int32_t i = 0; i < table.count; ++i)
    if (table.controls[i].key && std::strcmp(table.controls[i].key, key) == 0)
      return &table.controls[i];
  return nullptr;
}

}  // namespace

const PageControl* FindPageControl(int32_t id) {
  if (const PageControl* c = FindIn(kMainDialogTable, id)) return c;
  for (const PageTable& page : kPageTables)
    if (const PageControl* c = FindIn(page, id)) return c;
  return nullptr;
}

const PageControl* FindControlForKey(const char* key) {
  if (!key) return nullptr;
  if (const PageControl* c = FindKeyIn(kMainDialogTable, key)) return c;
  for (const PageTable& page : kPageTables)
    if (const PageControl* c = FindKeyIn(page, key)) return c;
  return nullptr;
}
