#pragma once
// Unpacking: from the values that scripts send to the Values that commands
// compute with. The operations differ in the types they accept and in how deep
// they go. "Nothing" is an empty optional. Callable on any thread; linear in
// the size of what is unpacked.

#include <optional>
#include <span>
#include <string>

#include "platform/file_contents.h"
#include "values/script_value.h"
#include "values/value.h"

namespace skerrow::core {

class ScriptCompiler;

/// Converts any value, through lists and records. Types that have no counterpart
/// stay raw. Nothing for a payload that its type cannot have: a number or date of
/// another width, a file reference that is no URL.
std::optional<Value> unpack(const ScriptValue& value);
/// The same for a value that is not needed any more: its texts are handed over.
std::optional<Value> unpack(ScriptValue&& value);

/// A list with each item through `unpack`. An item that gives nothing leaves
/// missing value in its place, so that positions keep their meaning.
Value unpackAEList(const ScriptValue& list);
Value unpackAEList(ScriptValue&& list);

/// The same for values that are not yet in a list.
Value unpackArrayOfAEDescs(std::span<const ScriptValue> values);
/// The same for a list Value whose items are raw, as arguments of list kind arrive.
Value unpackArrayOfAEDescs(const Value& listOfRaw);

/// A list of the items as they came, each raw.
Value unpackListShallow(const ScriptValue& list);

/// A record: user fields under their labels, a keyword under its code between «
/// and ». A label without a value is dropped, and a later field replaces one of the
/// same key.
Value unpackAERecord(const ScriptValue& record);
/// The same; texts among the values of a record that shares its labels are handed over
/// where nobody else has them.
Value unpackAERecord(ScriptValue&& record);

/// A record of a class of its own becomes a record whose key «pcls» holds null;
/// anything else stays raw.
Value unpackUnknown(const ScriptValue& value);

/// Text becomes text, a list goes through `unpackAEListJustText`, anything else stays raw.
Value unpackTextOrList(const ScriptValue& value);
Value unpackAEListJustText(const ScriptValue& list);

/// As `unpackTextOrList`, and a file reference becomes the file's text. Throws
/// ScriptError 1012 with the platform's description for a file that cannot be
/// read; in a list the items after the first such file are not looked at.
Value unpackTextOrListOrFile(const ScriptValue& value, const platform::FileContents& files);
Value unpackAEListJustTextOrFile(const ScriptValue& list, const platform::FileContents& files);

/// The whole text of a file: UTF-8, without a byte-order mark at its front, or Mac OS Roman
/// where it is not valid UTF-8.
/// Throws platform::PlatformError when the file cannot be read.
Text bestStringFromURL(const Url& url, const platform::FileContents& files);

/// The class codes of `unpackTextNumberDate`.
enum class ValueClass : int { text = 1, number = 2, date = 3, other = 1000 };

struct ClassifiedValue {
  std::optional<Value> value;
  ValueClass isClass;
};

/// Converts text, numbers and dates; leaves everything else raw. A date that
/// cannot be converted is nothing, of class `date` all the same.
ClassifiedValue unpackTextNumberDate(const ScriptValue& value);

/// The data of a script compiled from its source text; nothing when it does not
/// compile, and then `errors` receives the compiler's account as a record.
std::optional<Value> scriptObjectFromString(std::u16string_view source,
                                            const ScriptCompiler& compiler, Value& errors);

/// The text that a value of one of the six text types holds; nothing for other types.
std::optional<Text> textFromScriptValue(const ScriptValue& value);

/// The number that a value of one of the number types holds, booleans included;
/// nothing for other types and for payloads of the wrong width.
std::optional<Number> numberFromScriptValue(const ScriptValue& value);

/// The URL that a file reference ('furl', 'alis', 'fsrf') names; nothing for
/// other types and for payloads that name none.
std::optional<Url> urlFromScriptValue(const ScriptValue& value);

[[nodiscard]] bool isTextType(FourCharCode type) noexcept;
[[nodiscard]] bool isNumberType(FourCharCode type) noexcept;
[[nodiscard]] bool isFileType(FourCharCode type) noexcept;

}  // namespace skerrow::core
