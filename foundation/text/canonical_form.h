#pragma once
// The canonical forms of the Unicode Standard (annex 15), in time linear in the text.
// ICU puts combining marks in order by insertion, which takes the square of their
// number where thousands stand on one character; such texts are put in order here.
// Callable on any thread.

#include <string>
#include <string_view>

namespace skerrow::foundation {

enum class CanonicalForm { decomposed, composed };

/// Replaces `into`, which must not hold the text, by the form of the text.
void makeCanonical(CanonicalForm form, std::u16string_view text, std::u16string& into);

/// For what takes texts in any form and orders marks itself: the text, or where so many
/// marks stand together that this would take long, its decomposed form in `room`.
std::u16string_view withOrderedMarks(std::u16string_view text, std::u16string& room);

/// Whether a code point stands on the one before it: a combining mark that has an order
/// among marks.
bool isOrderedMark(char32_t codePoint) noexcept;

}  // namespace skerrow::foundation
