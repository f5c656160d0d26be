#include "scripting/json_source.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>
#include <utility>

#include "foundation/code_points.h"

namespace skerrow::scripting {

using foundation::isLeadingSurrogate;
using foundation::isTrailingSurrogate;

namespace {

constexpr std::size_t kPiece = 64 * 1024;

constexpr std::size_t kEscape = 6;  // \uXXXX

// Characters of UTF-8: all bytes but those that go on with one, eight at a time.
std::size_t characterCount(std::string_view text) {
  std::size_t count = text.size();
  while (!text.empty()) {
    std::uint64_t bytes = 0;
    const std::size_t taken = std::min(text.size(), sizeof bytes);
    std::memcpy(&bytes, text.data(), taken);
    // 10xxxxxx: the highest bit is set, and the next is not.
    constexpr std::uint64_t kEach = 0x0101010101010101U;
    const std::uint64_t goOn = (bytes & ~(bytes << 1U)) >> 7U & kEach;
    count -= goOn * kEach >> 56U;  // their sum
    text.remove_prefix(taken);
  }
  return count;
}

// Where the last line of a text begins.
std::size_t startOfLastLine(std::string_view text) {
  const void* const lineEnd = ::memrchr(text.data(), '\n', text.size());
  if (lineEnd == nullptr) return 0;
  return static_cast<std::size_t>(static_cast<const char*>(lineEnd) - text.data()) + 1;
}

// The unit that the escape at the front spells; nothing when there is none.
std::optional<char16_t> escapedUnit(std::string_view text) {
  if (text.size() < kEscape || text[0] != '\\' || text[1] != 'u') return std::nullopt;
  unsigned unit = 0;
  const char* const last = text.data() + kEscape;
  const auto [stop, error] = std::from_chars(text.data() + 2, last, unit, 16);
  if (error != std::errc() || stop != last) return std::nullopt;
  return static_cast<char16_t>(unit);
}

}  // namespace

JsonSource::JsonSource(std::string_view text)
    : buffer_(text), filled_(text.size()), isExhausted_(true) {
  replaceStrayMarks(0);
  passByteOrderMark();
  prepare(prepared_);
  goOnAt(0);
}

JsonSource::JsonSource(Read read) : read_(std::move(read)) {}

bool JsonSource::beginLine() {
  if (stopsAtLineEnds_) {
    while (!isAtEnd()) next_ = end_;
    if (isAtLineEnd_) ++next_;
    isAtLineEnd_ = false;
  }
  stopsAtLineEnds_ = true;
  goOnAt(position());
  return !isAtEnd() || isAtLineEnd_;
}

bool JsonSource::isAtEnd() { return Peek() == '\0' && next_ == end_; }

std::optional<double> JsonSource::zeroBehind() const {
  NumberRun number = servedRun_;
  number.append(std::string_view(buffer_).substr(0, position()));
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
  while (next_ == end_) {
    if (isAtLineEnd_ || !refill()) return '\0';
  }
  return *next_;
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
  const std::size_t dropped = position() > kKept ? position() - kKept : 0;
  const std::size_t kept = position() - dropped;
  const std::string_view served(buffer_.data(), dropped);
  const std::size_t lastLine = startOfLastLine(served);
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
  readPiece();
  passByteOrderMark();
  prepare(prepared_);
  goOnAt(kept);
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
    if (isLeadingSurrogate(*unit)) {
      const auto next = escapedUnit(rest.substr(kEscape));
      if (next && isTrailingSurrogate(*next)) {
        at += 2 * kEscape;
        continue;
      }
    }
    if (isLeadingSurrogate(*unit) || isTrailingSurrogate(*unit)) {
      std::memmove(buffer_.data() + at + 1, buffer_.data() + at + 2, 4);
      buffer_[at] = buffer_[at + kEscape - 1] = kSurrogateMark;
    }
    at += kEscape;
  }
  prepared_ = filled_;
}

void JsonSource::goOnAt(std::size_t position) {
  std::size_t end = prepared_;
  if (stopsAtLineEnds_) {
    const std::size_t lineEnd = buffer_.find('\n', position);
    isAtLineEnd_ = lineEnd < prepared_;
    if (isAtLineEnd_) end = lineEnd;
  }
  next_ = buffer_.data() + position;
  end_ = buffer_.data() + end;
}

std::string JsonSource::placeOf(std::size_t offset) const {
  const std::size_t known = offset > offset_ ? std::min(offset - offset_, filled_) : 0;
  const std::string_view before(buffer_.data(), known);
  const auto lineEnds = static_cast<std::size_t>(std::ranges::count(before, '\n'));
  const std::size_t column = characterCount(before.substr(startOfLastLine(before))) +
                             (lineEnds == 0 ? charactersBefore_ : 0) + 1;
  return "line " + std::to_string(linesBefore_ + lineEnds + 1) + ", column " +
         std::to_string(column);
}

}  // namespace skerrow::scripting
