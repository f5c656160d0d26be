#include "tests/support/json_text.h"

#include <rapidjson/document.h>
#include <rapidjson/error/en.h>
#include <rapidjson/memorystream.h>
#include <rapidjson/reader.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <optional>
#include <utility>

namespace skerrow::tests {

namespace {

constexpr unsigned kFlags =
    rapidjson::kParseNumbersAsStringsFlag | rapidjson::kParseValidateEncodingFlag;

template <class Handler>
void parse(rapidjson::MemoryStream& stream, Handler& handler) {
  rapidjson::Reader reader;
  const rapidjson::ParseResult result = reader.Parse<kFlags>(stream, handler);
  if (!result) throw MalformedJson(rapidjson::GetParseError_En(result.Code()), result.Offset());
}

std::optional<unsigned> escapedUnit(std::string_view text) {
  unsigned unit = 0;
  if (!text.starts_with("\\u") || text.size() < 6) return std::nullopt;
  const char* const end = text.data() + 6;
  return std::from_chars(text.data() + 2, end, unit, 16).ptr == end ? std::optional(unit)
                                                                    : std::nullopt;
}

// The JSON library refuses the escape of a lone surrogate, so it becomes a
// backslash and its digits: of the same length, so that places stay the same.
std::string withoutLoneSurrogates(std::string_view text) {
  std::string changed(text);
  for (std::size_t at = 0; (at = text.find('\\', at)) != std::string_view::npos;) {
    const auto unit = escapedUnit(text.substr(at));
    if (!unit || *unit < 0xD800 || *unit > 0xDFFF) {
      at += 2;
      continue;
    }
    const auto next = escapedUnit(text.substr(at + 6));
    if (*unit < 0xDC00 && next && *next >= 0xDC00 && *next <= 0xDFFF) {
      at += 12;
      continue;
    }
    changed[at + 1] = '\\';
    std::ranges::transform(
        text.substr(at + 2, 4), changed.begin() + static_cast<std::ptrdiff_t>(at) + 2,
        [](unsigned char digit) { return static_cast<char>(std::toupper(digit)); });
    at += 6;
  }
  return changed;
}

struct Normaliser : rapidjson::Writer<rapidjson::StringBuffer> {
  using Writer::Writer;
  bool RawNumber(const char* digits, rapidjson::SizeType count, bool /*copy*/) {
    return RawValue(digits, count, rapidjson::kNumberType);
  }
};

// Notes where the values directly inside the outermost one begin and end.
class Splitter : public rapidjson::BaseReaderHandler<rapidjson::UTF8<>, Splitter> {
 public:
  Splitter(std::string_view text, const rapidjson::MemoryStream& stream)
      : text_(text), stream_(stream) {}

  bool Default() { return endValue(); }
  bool StartObject() { return start(); }
  bool StartArray() { return start(); }
  bool EndObject(rapidjson::SizeType /*count*/) { return end(); }
  bool EndArray(rapidjson::SizeType /*count*/) { return end(); }
  bool Key(const char* name, rapidjson::SizeType count, bool /*copy*/) {
    if (depth_ != 1) return true;
    name_.assign(name, count);
    memberBegin_ = text_.find('"', begin_);
    begin_ = stream_.Tell();
    return true;
  }
  std::vector<JsonPart> takeParts() { return std::move(parts_); }

 private:
  bool start() {
    if (depth_++ == 0) begin_ = stream_.Tell();
    return true;
  }
  bool end() {
    --depth_;
    return endValue();
  }
  bool endValue() {
    if (depth_ != 1) return true;
    const std::size_t end = stream_.Tell();
    begin_ = text_.find_first_not_of(" \t\r\n,:", begin_);
    const std::size_t memberBegin = std::exchange(memberBegin_, kNone);
    const std::size_t wholeBegin = memberBegin == kNone ? begin_ : memberBegin;
    parts_.push_back({std::exchange(name_, {}), text_.substr(begin_, end - begin_),
                      text_.substr(wholeBegin, end - wholeBegin)});
    begin_ = end;
    return true;
  }

  std::string_view text_;
  const rapidjson::MemoryStream& stream_;
  std::string name_;
  static constexpr std::size_t kNone = std::string_view::npos;

  std::size_t begin_ = 0;
  std::size_t memberBegin_ = kNone;
  int depth_ = 0;
  std::vector<JsonPart> parts_;
};

std::vector<JsonPart> split(std::string_view text, char opening, const char* what) {
  const std::size_t first = text.find_first_not_of(" \t\r\n");
  if (first == std::string_view::npos || text[first] != opening) {
    throw MalformedJson(what, first == std::string_view::npos ? 0 : first);
  }
  const std::string readable = withoutLoneSurrogates(text);
  rapidjson::MemoryStream stream(readable.data(), readable.size());
  Splitter splitter(text, stream);
  parse(stream, splitter);
  return splitter.takeParts();
}

}  // namespace

std::string normalJson(std::string_view text) {
  const std::string readable = withoutLoneSurrogates(text);
  rapidjson::MemoryStream stream(readable.data(), readable.size());
  rapidjson::StringBuffer buffer;
  Normaliser normaliser(buffer);
  parse(stream, normaliser);
  return {buffer.GetString(), buffer.GetSize()};
}

std::vector<JsonPart> membersOf(std::string_view object) {
  return split(object, '{', "an object is needed here");
}

std::vector<JsonPart> itemsOf(std::string_view array) {
  return split(array, '[', "an array is needed here");
}

std::string contentOf(std::string_view string) {
  rapidjson::Document document;
  document.Parse(string.data(), string.size());
  if (document.HasParseError() || !document.IsString()) {
    throw MalformedJson("a string is needed here", 0);
  }
  return {document.GetString(), document.GetStringLength()};
}

std::string jsonString(std::string_view utf8) {
  rapidjson::StringBuffer buffer;
  rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
  writer.String(utf8.data(), static_cast<rapidjson::SizeType>(utf8.size()));
  return {buffer.GetString(), buffer.GetSize()};
}

}  // namespace skerrow::tests
