#pragma once
// Tables in text form. Each reader gives a list of rows, each row a list of
// texts; nothing is trimmed at the end of a field and nothing becomes a number.
// Linear; the work stops, by throwing, when the command is told to stop.

#include <string_view>

#include "values/value.h"

namespace skerrow::text {

/// Comma-separated values. Fields may be quoted, in whole or in part, and hold
/// commas and line ends then; "" is a quote within quotes. White space after a
/// comma is skipped. A run of line ends ends one row. An empty last field is left
/// out, and so is a row without fields.
Value parseCSVIn(std::u16string_view text);

/// Tab-separated values: a row for each paragraph (ended by LF, CR, CR LF or
/// U+2029), empty ones too, cut at every TAB. Quotes mean nothing.
Value parseTSVIn(std::u16string_view text);

}  // namespace skerrow::text
