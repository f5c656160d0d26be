#pragma once
// JsonSource: the bytes of a JSON text, read front to back in pieces, as the
// JSON library wants them. It can stop at the ends of lines, knows the line and
// column of any recent byte, and marks the escapes of lone surrogates, which the
// library refuses, so that the decoder can take them. A UTF-8 byte-order mark at
// the very front is passed over.

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace skerrow::scripting {

class JsonSource {
 public:
  using Ch = char;
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
  bool isAtEnd();

  /// "line 3, column 17" (columns count characters from 1) of a byte by its offset.
  [[nodiscard]] std::string placeOf(std::size_t offset) const;
  [[nodiscard]] std::string currentPlace() const { return placeOf(Tell()); }

  /// The number that was taken last, with its sign, if it has no digit but 0 before its
  /// exponent.
  [[nodiscard]] std::optional<double> zeroBehind() const;

  // What the JSON library calls. A NUL stands for the end; whether it is one,
  // isAtEnd tells.
  Ch Peek() { return next_ != end_ ? *next_ : peekBeyond(); }
  Ch Take() {
    if (next_ != end_) return *next_++;
    const Ch taken = peekBeyond();
    if (next_ != end_) ++next_;
    return taken;
  }
  /// What lies ready to be taken without reading on; empty at an end.
  [[nodiscard]] std::string_view ready() const noexcept { return {next_, end_}; }
  void skip(std::size_t count) noexcept { next_ += count; }
  [[nodiscard]] std::size_t Tell() const noexcept { return offset_ + position(); }
  // Parts of the library's stream interface that reading never uses.
  static Ch* PutBegin() { return nullptr; }
  static void Put(Ch /*character*/) {}
  static void Flush() {}
  static std::size_t PutEnd(Ch* /*begin*/) { return 0; }

  /// Stands at both ends of the four digits of a lone surrogate's escape.
  static constexpr Ch kSurrogateMark = static_cast<Ch>(0xF8);

 private:
  // What matters of a run of the characters that numbers are made of.
  struct NumberRun {
    bool isEmpty = true;
    bool isNegative = false;
    bool isInExponent = false;
    bool hasOtherDigits = false;  // than 0, before the exponent

    void append(std::string_view text);
  };

  [[nodiscard]] std::size_t position() const noexcept {
    return static_cast<std::size_t>(next_ - buffer_.data());
  }
  Ch peekBeyond();
  bool refill();
  void readPiece();
  void passByteOrderMark();
  void replaceStrayMarks(std::size_t from);
  void prepare(std::size_t from);
  // Where the next byte is, and as much behind it as may be taken.
  void goOnAt(std::size_t position);

  Read read_;
  std::string buffer_;
  const char* next_ = buffer_.data();  // the next byte, in the buffer
  const char* end_ = next_;            // the end of what may be taken
  std::size_t prepared_ = 0;           // up to here escapes have been looked at
  std::size_t filled_ = 0;             // the end of what was read
  std::size_t offset_ = 0;             // of the buffer's first byte in the whole text
  bool isExhausted_ = false;
  bool stopsAtLineEnds_ = false;
  bool isAtLineEnd_ = false;
  NumberRun servedRun_;               // that ends where the buffer begins
  std::size_t linesBefore_ = 0;       // line ends before the buffer
  std::size_t charactersBefore_ = 0;  // of the line on which the buffer begins
};

}  // namespace skerrow::scripting
