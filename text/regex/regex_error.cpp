#include "text/regex/regex_error.h"

#include <vector>

#include "foundation/text/text_encoding.h"
#include "values/number.h"

namespace skerrow::text {

namespace {

std::u16string wide(std::string_view text) { return foundation::utf16FromUtf8Replacing(text); }

std::string exceptionReason(const RegexError& error) {
  return "ICU regular expression error #" + std::to_string(error.fault.code) + ", " +
         error.fault.name + ".";
}

Value countOf(std::size_t count) { return Number::signed64(static_cast<std::int64_t>(count)); }

Value valueOf(foundation::UnitRange range) {
  return std::vector<Value>{countOf(range.location), countOf(range.length)};
}

}  // namespace

RegexFailure::RegexFailure(RegexError error)
    : RegexException(kName, exceptionReason(error)), error_(std::move(error)) {}

std::u16string RegexError::localizedDescription() const {
  if (stage == Stage::compiling) return u"There was an error compiling the regular expression.";
  return u"There was an error matching the regular expression.";
}

std::u16string RegexError::localizedFailureReason() const {
  std::u16string reason = u"The error " + wide(fault.name) + u" occurred";
  if (fault.position) {
    const foundation::RegexFault::Position& position = *fault.position;
    reason += u" at line " + wide(std::to_string(position.line)) + u", column " +
              wide(std::to_string(position.offset)) + u": " + position.before + u"<<HERE>>" +
              position.after;
    return reason;
  }
  return reason + u".";
}

std::u16string RegexError::explanation() const {
  // The one way in which a pattern itself brings ICU's compiler to its internal error.
  const bool isTooDeep =
      stage == Stage::compiling && fault.code == foundation::RegexFault::kNestedTooDeep;
  return isTooDeep ? u"Groups and sets cannot be nested as deep as this, 100 and more." : u"";
}

Record RegexError::details() const {
  Record record{
      {u"RKLICURegexErrorCode", Number::signed32(fault.code)},
      {u"RKLICURegexErrorName", wide(fault.name)},
      {u"RKLICURegexRegex", regex},
      {u"RKLICURegexRegexOptions", Number::unsigned32(options)},
      {u"localizedDescription", localizedDescription()},
      {u"localizedFailureReason", localizedFailureReason()},
  };
  if (fault.position) {
    record.set(u"RKLICURegexLine", Number::signed32(fault.position->line));
    record.set(u"RKLICURegexOffset", Number::signed32(fault.position->offset));
    record.set(u"RKLICURegexPreContext", std::u16string_view(fault.position->before));
    record.set(u"RKLICURegexPostContext", std::u16string_view(fault.position->after));
  }
  if (subject) record.set(u"RKLICURegexSubjectString", *subject);
  if (subjectRange) record.set(u"RKLICURegexSubjectRange", valueOf(*subjectRange));
  if (replacement) record.set(u"RKLICURegexReplacementString", *replacement);
  if (replaced) record.set(u"RKLICURegexReplacedString", *replaced);
  if (replacedCount) record.set(u"RKLICURegexReplacedCount", countOf(*replacedCount));
  if (enumerationOptions) {
    record.set(u"RKLICURegexEnumerationOptions", Number::unsigned32(*enumerationOptions));
  }
  return record;
}

}  // namespace skerrow::text
