#include "text/csv_reader.h"

#include <array>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "foundation/text/character_sets.h"
#include "work/stopping.h"

namespace skerrow::text {

namespace {

using Items = std::vector<Value>;

constexpr std::size_t kRowsBetweenChecks = 1024;
constexpr std::size_t kTableSize = 0x100;

constexpr bool isSpecial(char16_t unit) {
  return unit == u',' || unit == u'"' || foundation::isNewline(unit);
}

constexpr auto kSpecialBelow = [] {
  std::array<bool, kTableSize> table{};
  for (std::size_t unit = 0; unit < kTableSize; ++unit) {
    table[unit] = isSpecial(static_cast<char16_t>(unit));
  }
  return table;
}();

// The rows of a table while they come. A new row makes room for as many fields as
// the one before had.
class Rows {
 public:
  void addField(std::u16string_view field) { row_.emplace_back(field); }
  void addField(std::u16string&& field) { row_.emplace_back(std::move(field)); }
  [[nodiscard]] bool hasFields() const { return !row_.empty(); }

  void endRow() {
    if (rows_.size() % kRowsBetweenChecks == 0) work::stopIfAsked();
    const std::size_t count = row_.size();
    rows_.emplace_back(std::exchange(row_, {}));
    row_.reserve(count);
  }

  [[nodiscard]] Value take() && { return std::move(rows_); }

 private:
  Items row_;
  Items rows_;
};

// A field while it is read: one run of the table's text as long as its runs lie side
// by side, which they nearly always do, and else the runs joined.
class Field {
 public:
  void append(std::u16string_view run) {
    if (run.empty()) return;
    if (run_.empty()) {
      run_ = run;
    } else if (joined_.empty() && run.data() == run_.data() + run_.size()) {
      run_ = {run_.data(), run_.size() + run.size()};
    } else {
      if (joined_.empty()) joined_ = run_;
      joined_ += run;
    }
  }

  [[nodiscard]] bool isEmpty() const { return run_.empty(); }

  void moveTo(Rows& rows) {
    if (joined_.empty()) {
      rows.addField(run_);
    } else {
      rows.addField(std::exchange(joined_, {}));
    }
    run_ = {};
  }

 private:
  std::u16string_view run_;
  std::u16string joined_;  // empty while run_ is everything
};

class CsvReader {
 public:
  CsvReader(std::u16string_view text) : text_(text) {}

  Value read() && {
    while (position_ < text_.size()) readRow();
    return std::move(rows_).take();
  }

 private:
  void readRow() {
    bool isQuoted = false;
    for (;;) {
      field_.append(upToSpecial());
      if (position_ == text_.size()) break;
      const char16_t unit = text_[position_];
      if (unit == u'"') {
        readQuote(isQuoted);
      } else if (isQuoted) {
        field_.append(text_.substr(position_++, 1));
      } else if (unit == u',') {
        field_.moveTo(rows_);
        ++position_;
        skip(foundation::isWhiteSpace);
      } else {
        skip(foundation::isNewline);
        break;
      }
    }
    // Kept: an empty last field is dropped, an empty one in the middle is not.
    if (!field_.isEmpty()) field_.moveTo(rows_);
    if (rows_.hasFields()) rows_.endRow();
  }

  // A quote opens or closes anywhere in a field; two in a row within quotes are one.
  void readQuote(bool& isQuoted) {
    ++position_;
    if (isQuoted && position_ < text_.size() && text_[position_] == u'"') {
      field_.append(text_.substr(position_++, 1));
    } else {
      isQuoted = !isQuoted;
    }
  }

  std::u16string_view upToSpecial() {
    const std::size_t begin = position_;
    while (position_ < text_.size()) {
      const char16_t unit = text_[position_];
      if (unit < kTableSize ? kSpecialBelow[unit] : isSpecial(unit)) break;
      ++position_;
    }
    return text_.substr(begin, position_ - begin);
  }

  template <class Skipped>
  void skip(Skipped&& isSkipped) {
    while (position_ < text_.size() && isSkipped(text_[position_])) ++position_;
  }

  std::u16string_view text_;
  std::size_t position_ = 0;
  Field field_;
  Rows rows_;
};

constexpr bool endsParagraph(char16_t unit) {
  return unit == u'\n' || unit == u'\r' || unit == u'\u2029';
}

}  // namespace

Value parseCSVIn(std::u16string_view text) { return CsvReader(text).read(); }

Value parseTSVIn(std::u16string_view text) {
  Rows rows;
  std::size_t begin = 0;
  bool isInParagraph = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char16_t unit = text[i];
    isInParagraph = !endsParagraph(unit);
    if (isInParagraph && unit != u'\t') continue;
    rows.addField(text.substr(begin, i - begin));
    if (!isInParagraph) {
      rows.endRow();
      if (text.substr(i).starts_with(u"\r\n")) ++i;
    }
    begin = i + 1;
  }
  if (isInParagraph) {
    rows.addField(text.substr(begin));
    rows.endRow();
  }
  return std::move(rows).take();
}

}  // namespace skerrow::text
