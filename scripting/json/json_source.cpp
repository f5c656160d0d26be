#include "scripting/json/json_source.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>

namespace skerrow::scripting {

namespace {

constexpr std::size_t kPiece = 64 * 1024;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

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

}  // namespace

JsonSource::JsonSource(std::string_view text)
    : buffer_(text), filled_(text.size()), isExhausted_(true) {
  passByteOrderMark();
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

bool JsonSource::readOn(std::size_t count) {
  while (static_cast<std::size_t>(end_ - next_) < count) {
    if (!readOn()) return false;
  }
  return true;
}

bool JsonSource::readOn() {
  if (isExhausted_ || isAtLineEnd_) return false;
  // Everything before the next byte has served; its lines and characters are counted.
  // Some bytes stay, as a fault is found only behind its place.
  constexpr std::size_t kKept = 64;
  const std::size_t dropped = position() > kKept ? position() - kKept : 0;
  const std::size_t kept = position() - dropped;
  if (!isMarkGone_ && mark_ < offset_ + dropped) {
    placeOfMark_ = placeOf(mark_);
    isMarkGone_ = true;
  }
  const std::string_view served = bytes().substr(0, dropped);
  const std::size_t lastLine = startOfLastLine(served);
  if (lastLine > 0) {
    linesBefore_ += static_cast<std::size_t>(std::ranges::count(served, '\n'));
    charactersBefore_ = 0;
  }
  charactersBefore_ += characterCount(served.substr(lastLine));
  drop(dropped);
  const bool isFirst = offset_ == 0 && filled_ == 0;
  offset_ += dropped;
  readPiece();
  if (isFirst) passByteOrderMark();
  goOnAt(kept);
  return true;
}

void JsonSource::readPiece() {
  if (buffer_.size() - filled_ < kPiece) buffer_.resize(filled_ + kPiece);
  const std::size_t count = read_(buffer_.data() + filled_, kPiece);
  isExhausted_ = count == 0;
  filled_ += count;
}

void JsonSource::drop(std::size_t count) {
  filled_ -= count;
  std::memmove(buffer_.data(), buffer_.data() + count, filled_);
}

void JsonSource::passByteOrderMark() {
  while (!isExhausted_ && filled_ < kByteOrderMark.size() && kByteOrderMark.starts_with(bytes())) {
    readPiece();
  }
  if (!bytes().starts_with(kByteOrderMark)) return;
  drop(kByteOrderMark.size());
  offset_ = kByteOrderMark.size();
}

void JsonSource::goOnAt(std::size_t position) {
  std::size_t end = filled_;
  if (stopsAtLineEnds_) {
    const std::size_t lineEnd = bytes().find('\n', position);
    isAtLineEnd_ = lineEnd < end;
    end = std::min(end, lineEnd);
  }
  next_ = buffer_.data() + position;
  end_ = buffer_.data() + end;
}

std::string JsonSource::placeOf(std::size_t offset) const {
  const std::size_t known = offset > offset_ ? std::min(offset - offset_, filled_) : 0;
  const std::string_view before = bytes().substr(0, known);
  const std::size_t lastLine = startOfLastLine(before);
  const auto lineEnds = static_cast<std::size_t>(std::ranges::count(before, '\n'));
  const std::size_t column =
      characterCount(before.substr(lastLine)) + (lastLine == 0 ? charactersBefore_ : 0) + 1;
  return "line " + std::to_string(linesBefore_ + lineEnds + 1) + ", column " +
         std::to_string(column);
}

}  // namespace skerrow::scripting
