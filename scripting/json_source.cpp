#include "scripting/json_source.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>
#include <utility>

namespace skerrow::scripting {

namespace {

constexpr std::size_t kPiece = 64 * 1024;

constexpr std::size_t kEscape = 6;  // \uXXXX

bool isLeading(unsigned unit) { return (unit & 0xFC00U) == 0xD800; }
bool isTrailing(unsigned unit) { return (unit & 0xFC00U) == 0xDC00; }

// Characters of UTF-8, by the bytes that begin one.
std::size_t characterCount(std::string_view text) {
  return static_cast<std::size_t>(std::ranges::count_if(
      text, [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80; }));
}

// The unit that the escape at the front spells; nothing when there is none.
std::optional<unsigned> escapedUnit(std::string_view text) {
  if (text.size() < kEscape || text[0] != '\\' || text[1] != 'u') return std::nullopt;
  unsigned unit = 0;
  const char* const last = text.data() + kEscape;
  const auto [stop, error] = std::from_chars(text.data() + 2, last, unit, 16);
  if (error != std::errc() || stop != last) return std::nullopt;
  return unit;
}

}  // namespace

JsonSource::JsonSource(std::string_view text)
    : buffer_(text), filled_(text.size()), isExhausted_(true) {
  replaceStrayMarks(0);
  passByteOrderMark();
  prepare(prepared_);
  findEnd();
}

JsonSource::JsonSource(Read read) : read_(std::move(read)) {}

bool JsonSource::beginLine() {
  if (stopsAtLineEnds_) {
    while (!isAtEnd()) position_ = end_;
    if (isAtLineEnd_) ++position_;
    isAtLineEnd_ = false;
  }
  stopsAtLineEnds_ = true;
  findEnd();
  return !isAtEnd() || isAtLineEnd_;
}

bool JsonSource::isAtEnd() { return Peek() == '\0' && position_ == end_; }

std::optional<double> JsonSource::zeroBehind() const {
  NumberRun number = servedRun_;
  number.append(std::string_view(buffer_).substr(0, position_));
  if (number.hasOtherDigits) return std::nullopt;
  return number.isNegative ? -0.0 : 0.0;
}

// Goes on behind a text of which only the run of number characters at its end counts.
void JsonSource::NumberRun::append(std::string_view text) {
  const std::size_t first = text.find_last_not_of("0123456789+-.eE") + 1;
  if (first > 0) *this = NumberRun();
  for (const char character : text.substr(first)) {
    if (isEmpty) isNegative = character == '-';
    isEmpty = false;
    isInExponent = isInExponent || character == 'e' || character == 'E';
    hasOtherDigits = hasOtherDigits || (!isInExponent && character >= '1' && character <= '9');
  }
}

JsonSource::Ch JsonSource::peekBeyond() {
  while (position_ == end_) {
    if (isAtLineEnd_ || !refill()) return '\0';
  }
  return buffer_[position_];
}

void JsonSource::readPiece() {
  if (isExhausted_) return;
  buffer_.resize(filled_ + kPiece);
  const std::size_t count = read_(buffer_.data() + filled_, kPiece);
  isExhausted_ = count == 0;
  buffer_.resize(filled_ + count);
  replaceStrayMarks(filled_);
  filled_ += count;
}

void JsonSource::passByteOrderMark() {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (offset_ != 0 || prepared_ != 0) return;
  while (!isExhausted_ && filled_ < kByteOrderMark.size() && buffer_.starts_with('\xEF')) {
    readPiece();
  }
  if (buffer_.starts_with(kByteOrderMark)) {
    buffer_.erase(0, kByteOrderMark.size());
    filled_ -= kByteOrderMark.size();
    offset_ = kByteOrderMark.size();
  }
}

bool JsonSource::refill() {
  if (isExhausted_ && prepared_ == filled_) return false;
  // Everything before the next byte has served; its lines and characters are counted.
  // Some bytes stay, as a fault is found only behind its place.
  constexpr std::size_t kKept = 64;
  const std::size_t dropped = position_ > kKept ? position_ - kKept : 0;
  const std::string_view served(buffer_.data(), dropped);
  const std::size_t lastLine = served.rfind('\n') + 1;  // 0 where there is no line end
  if (lastLine > 0) {
    linesBefore_ += static_cast<std::size_t>(std::ranges::count(served, '\n'));
    charactersBefore_ = 0;
  }
  charactersBefore_ += characterCount(served.substr(lastLine));
  servedRun_.append(served);
  buffer_.erase(0, dropped);
  offset_ += dropped;
  filled_ -= dropped;
  prepared_ -= dropped;
  position_ -= dropped;
  end_ = position_;
  readPiece();
  passByteOrderMark();
  prepare(prepared_);
  findEnd();
  return true;
}

// A mark in the text itself is no UTF-8; another byte that is none takes its place.
void JsonSource::replaceStrayMarks(std::size_t from) {
  if (buffer_.find(kSurrogateMark, from) == std::string::npos) return;
  std::ranges::replace(std::span(buffer_).subspan(from), kSurrogateMark, static_cast<Ch>(0xFF));
}

// Looks at the escapes from a place on. One that the next piece may go on with
// is left for later.
void JsonSource::prepare(std::size_t from) {
  std::size_t at = from;
  while ((at = buffer_.find('\\', at)) < filled_) {
    const std::string_view rest(buffer_.data() + at, filled_ - at);
    if (rest.size() < 2 * kEscape && !isExhausted_ && rest.find('\n') == std::string_view::npos) {
      prepared_ = at;
      return;
    }
    const auto unit = escapedUnit(rest);
    if (!unit) {
      at += std::min<std::size_t>(2, rest.size());
      continue;
    }
    if (isLeading(*unit)) {
      const auto next = escapedUnit(rest.substr(kEscape));
      if (next && isTrailing(*next)) {
        at += 2 * kEscape;
        continue;
      }
    }
    if (isLeading(*unit) || isTrailing(*unit)) {
      std::memmove(buffer_.data() + at + 1, buffer_.data() + at + 2, 4);
      buffer_[at] = buffer_[at + kEscape - 1] = kSurrogateMark;
    }
    at += kEscape;
  }
  prepared_ = filled_;
}

void JsonSource::findEnd() {
  end_ = prepared_;
  if (!stopsAtLineEnds_) return;
  const std::size_t lineEnd = buffer_.find('\n', position_);
  if (lineEnd < prepared_) {
    end_ = lineEnd;
    isAtLineEnd_ = true;
  }
}

std::string JsonSource::placeOf(std::size_t offset) const {
  const std::size_t known = offset > offset_ ? std::min(offset - offset_, filled_) : 0;
  const std::string_view before(buffer_.data(), known);
  const auto lineEnds = static_cast<std::size_t>(std::ranges::count(before, '\n'));
  const std::size_t column = characterCount(before.substr(before.rfind('\n') + 1)) +
                             (lineEnds == 0 ? charactersBefore_ : 0) + 1;
  return "line " + std::to_string(linesBefore_ + lineEnds + 1) + ", column " +
         std::to_string(column);
}

}  // namespace skerrow::scripting
