#include "foundation/text/user_preferences.h"

#include <unicode/ucal.h>
#include <unicode/uloc.h>

#include <array>
#include <optional>
#include <string_view>

#include "foundation/text/icu_text.h"
#include "foundation/text/text_encoding.h"

namespace skerrow::foundation {

namespace {

constexpr std::array<const char*, 3> kLanguageVariables = {"LC_ALL", "LC_MESSAGES", "LANG"};

// "ca_ES.UTF-8@valencia" without its encoding, as ICU knows it.
std::string withoutEncoding(const std::string& name) {
  const std::size_t dot = name.find('.');
  if (dot == std::string::npos) return name;
  const std::size_t variant = name.find('@', dot);
  return name.substr(0, dot) + (variant == std::string::npos ? "" : name.substr(variant));
}

std::string canonical(const std::string& name) {
  std::array<char, ULOC_FULLNAME_CAPACITY> identifier{};
  UErrorCode status = U_ZERO_ERROR;
  const std::int32_t length = uloc_canonicalize(
      name.c_str(), identifier.data(), static_cast<std::int32_t>(identifier.size()), &status);
  if (U_FAILURE(status) || status == U_STRING_NOT_TERMINATED_WARNING) return {};
  return {identifier.data(), static_cast<std::size_t>(length)};
}

}  // namespace

std::string userLocale(const platform::Environment& environment) {
  for (const char* const variable : kLanguageVariables) {
    const std::optional<std::string> name = environment.variable(variable);
    if (!name || name->empty()) continue;
    const std::string language = withoutEncoding(*name);
    return language == "C" || language == "POSIX" ? "" : canonical(language);
  }
  return {};
}

std::string userTimeZone(const platform::Environment& environment) {
  const std::optional<std::string> given = environment.variable("TZ");
  if (!given) return {};
  if (given->empty()) return "UTC";
  const std::string name = given->substr(given->starts_with(':') ? 1 : 0);
  const std::u16string units = utf16FromUtf8Replacing(name);
  std::array<char16_t, 128> known{};
  UBool isOlsonName = 0;
  UErrorCode status = U_ZERO_ERROR;
  ucal_getCanonicalTimeZoneID(icuUnits(units), icuLength(units), known.data(),
                              static_cast<std::int32_t>(known.size()), &isOlsonName, &status);
  return U_SUCCESS(status) && isOlsonName != 0 ? name : std::string();
}

}  // namespace skerrow::foundation
