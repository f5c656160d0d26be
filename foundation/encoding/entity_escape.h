#pragma once
// The predefined entities and character references of XML 1.0 (sections 4.1 and 4.6).

#include <string>
#include <string_view>

namespace skerrow::foundation {

/// & < > " ' as &amp; &lt; &gt; &quot; &apos;.
std::u16string entitiesEscaped(std::u16string_view text);

/// The five entities, &#NNN; and &#xHHHH; as the characters that they stand for. An
/// unknown entity, or a reference that is malformed or names no character, stays.
/// What comes out is not read again.
std::u16string entitiesUnescaped(std::u16string_view text);

/// The characters of a text that is the content of an XML element: entities and
/// references as the characters that they stand for, markup left out. Behind a fault
/// in the markup nothing is read any more. Lone surrogates become U+FFFD.
std::u16string convertEntiesInString(std::u16string_view text);

}  // namespace skerrow::foundation
