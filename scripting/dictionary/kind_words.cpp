#include "scripting/dictionary/kind_words.h"

#include <algorithm>
#include <cassert>

#include "core/script_error.h"
#include "core/unpack.h"
#include "foundation/encoding/code_text.h"
#include "foundation/text/quoted_text.h"
#include "foundation/text/text_encoding.h"
#include "values/object_reference.h"

namespace skerrow::scripting {

using namespace literals;

namespace {

// The kind that a type of values is of; none for the many types that are of none.
Kinds kindOf(FourCharCode type) {
  if (core::isTextType(type)) return Kinds::text;
  if (core::isFileType(type)) return Kinds::file;
  switch (number(type)) {
    case number("list"_code):
      return Kinds::list;
    case number("reco"_code):
      return Kinds::record;
    case number("ldt "_code):
      return Kinds::date;
    case number("type"_code):
      return Kinds::type;
    case number("enum"_code):
      return Kinds::enumeration;
    case number("rdat"_code):
      return Kinds::data;
    case number("scpt"_code):
      return Kinds::script;
    case number("obj "_code):
      return Kinds::reference;
    case number("QDpt"_code):
      return Kinds::point;
    case number("qdrt"_code):
      return Kinds::rectangle;
    default:
      return Kinds::none;
  }
}

std::string quoted(FourCharCode code) {
  return "“" + foundation::utf8FromUtf16(foundation::textFromCode(code)) + "”";
}

}  // namespace

const KindWords& wordsOf(Kinds kind) noexcept {
  const auto found = std::ranges::find(kindWords(), kind, &KindWords::kind);
  assert(found != kindWords().end());
  return *found;
}

std::string kindInWords(const ScriptValue& value) {
  const FourCharCode type = value.type();
  if (type == "true"_code || type == "fals"_code || type == "bool"_code) return "a boolean";
  if (const auto number = core::numberFromScriptValue(value)) {
    return (number->isReal() ? "the real number " : "the integer ") + core::textFrom(*number);
  }
  if (value.isMissingValue() || type == "msng"_code) return "missing value";
  if (type == "null"_code) return "the null value";
  if (value.hasFields() && type != kPlainRecord) return "a record of the class " + quoted(type);
  if (const ObjectReference* object = value.objectReference()) {
    return "the reference “" + foundation::shortened(object->path()) + "”";
  }
  const Kinds kind = kindOf(type);
  if (kind != Kinds::none) return std::string(wordsOf(kind).one);
  return "a value of type " + quoted(type);
}

}  // namespace skerrow::scripting
