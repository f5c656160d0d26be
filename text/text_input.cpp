#include "text/text_input.h"

#include <utility>

#include "core/unpack.h"
#include "platform/platform_error.h"
#include "work/stopping.h"

namespace skerrow::text {

using namespace literals;
using core::ErrorEntry;
using core::ScriptError;

namespace {

bool isList(const ScriptValue& value) { return value.type() == "list"_code; }

std::optional<Value> mapList(std::span<const ScriptValue> items, const TextMapping& mapping) {
  std::vector<Value> mapped;
  mapped.reserve(items.size());
  for (const ScriptValue& item : items) {
    work::stopIfAsked();
    std::optional<Value> value = mapTexts(item, mapping);
    if (!value) return std::nullopt;
    mapped.push_back(std::move(*value));
  }
  return mapped;
}

}  // namespace

Text textOfFile(const ScriptValue& file, const platform::FileContents& files, int errorNumber) {
  const std::optional<Url> url = core::urlFromScriptValue(file);
  if (!url) throw ScriptError(errorNumber, "The file reference does not name a file.");
  try {
    return core::bestStringFromURL(*url, files);
  } catch (const platform::PlatformError& error) {
    throw ScriptError(errorNumber, error.localizedDescription());
  }
}

std::function<Text(const ScriptValue& file)> readingFiles(const platform::FileContents& files,
                                                          int errorNumber) {
  return [&files, errorNumber](const ScriptValue& file) {
    return textOfFile(file, files, errorNumber);
  };
}

std::optional<Value> mapTexts(const ScriptValue& given, const TextMapping& mapping) {
  if (isList(given)) return mapList(given.items(), mapping);
  if (core::isFileType(given.type())) return mapping.convert(mapping.textFromFile(given));
  if (const std::optional<Text> text = core::textFromScriptValue(given)) {
    return mapping.convert(*text);
  }
  return given;
}

void requireTextOrList(const std::optional<ScriptValue>& direct, const ErrorEntry& otherwise) {
  if (!direct || !(isList(*direct) || core::isTextType(direct->type()))) {
    throw ScriptError(otherwise);
  }
}

bool isEmptyList(const ScriptValue& value) { return isList(value) && value.items().empty(); }

Value convertTextOrTexts(const ScriptValue& textOrList, const ErrorEntry& otherwise,
                         const std::function<Value(const Text&)>& convert) {
  const auto converted = [&](const ScriptValue& item) {
    const std::optional<Text> text = core::textFromScriptValue(item);
    if (!text) throw ScriptError(otherwise);
    return convert(*text);
  };
  if (!isList(textOrList)) return converted(textOrList);
  std::vector<Value> results;
  results.reserve(textOrList.items().size());
  for (const ScriptValue& item : textOrList.items()) {
    work::stopIfAsked();
    results.push_back(converted(item));
  }
  return results;
}

std::optional<Text> textArgument(const Value* argument) {
  if (argument == nullptr) return std::nullopt;
  return argument->sharedText();
}

}  // namespace skerrow::text
