#pragma once
// What the environment says about the user: the language and the time zone. Both are
// read anew each time, so that whoever sorts or reads much asks once.

#include <string>

#include "platform/environment.h"

namespace skerrow::foundation {

/// The language whose rules a user wants, as an ICU locale identifier: that of LC_ALL,
/// LC_MESSAGES or LANG, the first that is not empty. The C and POSIX locales, which have no
/// language, are empty, and so is the answer without any: the rules of all languages.
std::string userLocale(const platform::Environment& environment);

/// The time zone that TZ names, by its Olson name. Empty where TZ is not there or
/// holds something else, such as a rule: then ICU and GLib find the machine's own.
std::string userTimeZone(const platform::Environment& environment);

}  // namespace skerrow::foundation
