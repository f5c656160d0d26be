// The table readers: every text is a table of texts, no row of which is empty, and
// holds no more units than the text.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "text/csv_reader.h"

namespace {

std::u16string unitsFrom(const std::uint8_t* data, std::size_t size) {
  std::u16string units(size / sizeof(char16_t), u'\0');
  if (!units.empty()) std::memcpy(units.data(), data, units.size() * sizeof(char16_t));
  return units;
}

void checkTable(const skerrow::Value& table, std::size_t unitCount) {
  std::size_t total = 0;
  for (const skerrow::Value& row : table.items()) {
    if (row.items().empty()) std::abort();
    for (const skerrow::Value& field : row.items()) total += field.text().size();
  }
  if (total > unitCount) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::u16string units = unitsFrom(data, size);
  checkTable(skerrow::text::parseCSVIn(units), units.size());
  checkTable(skerrow::text::parseTSVIn(units), units.size());
  // The same bytes as Latin characters, which meet the special ones more often.
  const std::u16string latin(data, data + size);
  checkTable(skerrow::text::parseCSVIn(latin), latin.size());
  checkTable(skerrow::text::parseTSVIn(latin), latin.size());
  return 0;
}
