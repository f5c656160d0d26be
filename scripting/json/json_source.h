#pragma once
// JsonSource: the bytes of a JSON text, read front to back in pieces. It can stop
// at the ends of lines, and knows the line and column of any recent byte. A UTF-8
// byte-order mark at the very front is passed over.

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace skerrow::scripting {

class JsonSource {
 public:
  /// Fills a buffer and says how many bytes it gave; 0 is the end.
  using Read = std::function<std::size_t(char* buffer, std::size_t capacity)>;

  /// A whole text that is there already.
  explicit JsonSource(std::string_view text);
  /// A text that is read as it is needed.
  explicit JsonSource(Read read);
  JsonSource(const JsonSource&) = delete;
  JsonSource& operator=(const JsonSource&) = delete;

  /// Goes to the start of the next line (the first one at first) and makes it a
  /// text of its own: reading stops at its end. False when there is none.
  bool beginLine();

  /// Whether everything up to the end (of the line) was taken.
  bool isAtEnd() { return next_ == end_ && !readOn(1); }

  /// The next byte, and NUL at the end; whether it is the end, isAtEnd tells.
  char peek() { return next_ != end_ || !isAtEnd() ? *next_ : '\0'; }
  /// The same, which is then taken.
  char take() { return next_ != end_ || !isAtEnd() ? *next_++ : '\0'; }

  /// What lies ready to be taken: so many bytes or more, unless the end is nearer.
  std::string_view ready(std::size_t count) {
    if (static_cast<std::size_t>(end_ - next_) < count) readOn(count);
    return {next_, end_};
  }
  /// Takes bytes that lie ready.
  void skip(std::size_t count) noexcept { next_ += count; }

  /// How many bytes were taken, or passed over at the front.
  [[nodiscard]] std::size_t offset() const noexcept { return offset_ + position(); }

  /// "line 3, column 17" (columns count characters from 1) of a byte by its offset: one
  /// of the last 64 that were taken, or the next.
  [[nodiscard]] std::string placeOf(std::size_t offset) const;
  [[nodiscard]] std::string currentPlace() const { return placeOf(offset()); }

  /// Remembers such a byte, however much is taken after it.
  void mark(std::size_t offset) noexcept {
    mark_ = offset;
    isMarkGone_ = false;
  }
  [[nodiscard]] std::string placeOfMark() const {
    return isMarkGone_ ? placeOfMark_ : placeOf(mark_);
  }

 private:
  [[nodiscard]] std::size_t position() const noexcept {
    return static_cast<std::size_t>(next_ - buffer_.data());
  }
  // Until so many bytes lie ready, if the end is not nearer: false then.
  bool readOn(std::size_t count);
  bool readOn();
  void readPiece();
  void drop(std::size_t count);  // from the front of the buffer
  void passByteOrderMark();
  // Where the next byte is, and as much behind it as may be taken.
  void goOnAt(std::size_t position);

  [[nodiscard]] std::string_view bytes() const noexcept { return {buffer_.data(), filled_}; }

  Read read_;
  std::string buffer_;  // its first `filled_` bytes
  std::size_t filled_ = 0;
  const char* next_ = buffer_.data();  // the next byte, in the buffer
  const char* end_ = next_;            // the end of what may be taken
  std::size_t offset_ = 0;             // of the buffer's first byte in the whole text
  bool isExhausted_ = false;
  bool stopsAtLineEnds_ = false;
  bool isAtLineEnd_ = false;
  std::size_t linesBefore_ = 0;       // line ends before the buffer
  std::size_t charactersBefore_ = 0;  // of the line on which the buffer begins
  std::size_t mark_ = 0;
  bool isMarkGone_ = false;  // from the buffer, so its place is kept
  std::string placeOfMark_;
};

}  // namespace skerrow::scripting
