// Entities and percent escapes: whatever is unescaped can be escaped and comes back,
// and unescaping never makes a text longer.

#include <cstdint>
#include <cstdlib>
#include <string>

#include "foundation/encoding/entity_escape.h"
#include "foundation/encoding/percent_escape.h"
#include "foundation/text/text_encoding.h"

using namespace skerrow::foundation;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::u16string text = utf16FromUtf8Replacing({reinterpret_cast<const char*>(data), size});
  const std::u16string plain = entitiesUnescaped(text);
  if (plain.size() > text.size()) std::abort();
  if (entitiesUnescaped(entitiesEscaped(plain)) != plain) std::abort();
  for (const auto reserved : {ReservedCharacters::kept, ReservedCharacters::escaped}) {
    const auto escaped = percentEscaped(text, reserved);
    if (!escaped || percentUnescaped(*escaped) != text) std::abort();
  }
  const auto unescaped = percentUnescaped(text);
  if (unescaped && unescaped->size() > text.size()) std::abort();
  return 0;
}
