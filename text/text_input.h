#pragma once
// What the commands of this room take in: texts, lists of texts at any depth, and
// files, each file standing for the text in it. Files are only read. For the
// command's task; the work stops, by throwing, when the command is told to stop.

#include <functional>
#include <optional>
#include <vector>

#include "core/script_error.h"
#include "platform/file_contents.h"
#include "values/script_value.h"
#include "values/value.h"

namespace skerrow::text {

/// The text of the file that a file reference names. A file that cannot be read
/// throws ScriptError with this number and the reason as its message.
Text textOfFile(const ScriptValue& file, const platform::FileContents& files, int errorNumber);

/// What a command makes of texts, wherever they stand in what it is given.
struct TextMapping {
  /// What becomes of a text. Nothing ends the command without a result.
  std::function<std::optional<Value>(const Text&)> convert;
  /// The text that stands for a file reference.
  std::function<Text(const ScriptValue& file)> textFromFile;
};

/// For `textFromFile`: the file's own text, by textOfFile.
std::function<Text(const ScriptValue& file)> readingFiles(const platform::FileContents& files,
                                                          int errorNumber);

/// Converts a text or the text of a file; a list item by item, at every depth.
/// Values of any other type, missing value among them, come back as they are. When
/// an item comes to nothing, so does the whole list.
std::optional<Value> mapTexts(const ScriptValue& given, const TextMapping& mapping);

/// Throws the error for anything but a text or a list.
void requireTextOrList(const std::optional<ScriptValue>& direct, const core::ErrorEntry& otherwise);

[[nodiscard]] bool isEmptyList(const ScriptValue& value);

/// The conversion of a text, or the list of the conversions of a list's items.
/// Throws the error for an item that is no text.
Value convertTextOrTexts(const ScriptValue& textOrList, const core::ErrorEntry& otherwise,
                         const std::function<Value(const Text&)>& convert);

/// A text argument that may be left out.
std::optional<Text> textArgument(const Value* argument);

}  // namespace skerrow::text
