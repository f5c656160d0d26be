#include "scripting/json/typed_json_writer.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "core/unpack.h"
#include "foundation/date/long_date_time.h"
#include "foundation/encoding/base64.h"
#include "foundation/encoding/code_text.h"
#include "foundation/text/text_encoding.h"
#include "foundation/url/url.h"
#include "values/keys.h"
#include "values/object_reference.h"
#include "values/prefetching.h"
#include "values/value.h"

namespace skerrow::scripting {

using namespace literals;

namespace {

// A record's user fields, if they are what an object can show: labels that are
// text and no keyword, each with its value.
std::optional<std::span<const ScriptValue>> plainUserFields(const ScriptField& field) {
  const auto items = field.value.items();
  if (field.keyword != kUserFields || !field.value.hasItems() || items.size() % 2 != 0) {
    return std::nullopt;
  }
  for (std::size_t i = 0; i < items.size(); i += 2) {
    const auto label = core::textFromScriptValue(items[i]);
    if (!label || foundation::keywordFromKey(label->view())) return std::nullopt;
  }
  return items;
}

// Whether an object that has just these labels would be taken for one of the special forms.
bool areLabelsOfForm(std::span<const std::u16string_view> labels) {
  if (labels.size() == 1) return labels[0].starts_with(u'$');
  const auto isPair = [&labels](std::u16string_view main, std::u16string_view companion) {
    return (labels[0] == main && labels[1] == companion) ||
           (labels[0] == companion && labels[1] == main);
  };
  return labels.size() == 2 && (isPair(u"$number", u"as") || isPair(u"$raw", u"data"));
}

bool areLabelsOfForm(const Keys& labels) {
  if (labels.count() > 2) return false;
  std::array<std::u16string_view, 2> views;
  for (std::size_t i = 0; i < labels.count(); ++i) views[i] = labels[i].text();
  return areLabelsOfForm(std::span(views).first(labels.count()));
}

bool areFieldsOfForm(std::span<const ScriptField> fields) {
  std::vector<Text> labels;
  for (const ScriptField& field : fields) {
    const auto items = plainUserFields(field);
    if (!items) return false;  // a keyword is a label of its own, and in none of the forms
    if (labels.size() + items->size() / 2 > 2) return false;
    for (std::size_t i = 0; i < items->size(); i += 2) {
      labels.push_back(*core::textFromScriptValue((*items)[i]));
    }
  }
  std::vector<std::u16string_view> views;
  views.reserve(labels.size());
  for (const Text& label : labels) views.push_back(label.view());
  return areLabelsOfForm(views);
}

class ValueWriter {
 public:
  explicit ValueWriter(const JsonSink& sink) : writer_(sink) {}

  void flush() { writer_.flush(); }

  // Lists and records call each other as deep as values go, so what they share a
  // stack frame with is kept small.
  void write(const ScriptValue& value) {
    if (value.hasItems()) {
      writeList(value);
    } else if (value.hasFields()) {
      writeRecord(value);
    } else {
      writeLeaf(value);
    }
  }

  void writeError(const core::ScriptError& error) {
    writer_.beginObject();
    writer_.label(u"error");
    writer_.beginObject();
    writer_.label(u"number");
    writeInteger(error.number());
    writer_.label(u"message");
    writer_.text(foundation::utf16FromUtf8Replacing(error.message()));
    writer_.endObject();
    writer_.endObject();
  }

  void writeReply(const core::Reply& reply) {
    writer_.beginObject();
    if (hasResult(reply)) {
      writer_.label(u"result");
      writeResult(reply);
    }
    writer_.endObject();
  }

  void writeResult(const core::Reply& reply) {
    const auto* const items = std::get_if<std::shared_ptr<core::ReplyItems>>(&reply);
    if (items == nullptr) return write(*std::get<std::optional<ScriptValue>>(reply));
    writer_.beginArray();
    while (const auto item = (*items)->next()) write(*item);
    writer_.endArray();
  }

 private:
  void form(std::u16string_view label, std::u16string_view text) {
    writer_.beginObject();
    writer_.label(label);
    writer_.text(text);
    writer_.endObject();
  }
  void form(std::u16string_view label, std::string_view utf8) {
    form(label, foundation::utf16FromUtf8Replacing(utf8));
  }

  template <class Integer>
  void writeInteger(Integer integer) {
    char digits[24];
    char* const end = std::to_chars(digits, digits + sizeof digits, integer).ptr;
    writer_.literal({digits, end});
  }
  void writeBoolean(bool value) { writer_.literal(value ? "true" : "false"); }

  [[gnu::noinline]] void writeLeaf(const ScriptValue& value) {
    if (const auto units = value.heldUnits()) return writer_.text(*units);
    if (const auto text = core::textFromScriptValue(value)) return writer_.text(text->view());
    if (const auto number = core::numberFromScriptValue(value)) return writeNumber(*number);
    if (const ObjectReference* object = value.objectReference()) {
      return form(u"$object", object->path());
    }
    if (!writeOther(value)) writeRaw(value);
  }

  void writeNumber(Number number) {
    switch (number.kind()) {
      case NumberKind::boolean:
        return writeBoolean(number.isNonZero());
      case NumberKind::unsigned64:
        return writeInteger(number.asUnsigned());
      case NumberKind::real:
        return writeReal(number.asReal());
      default:
        return writeInteger(number.asInteger());
    }
  }

  void writeReal(double real) {
    if (std::isnan(real)) return form(u"$real", u"nan");
    if (std::isinf(real)) return form(u"$real", real > 0 ? u"inf" : u"-inf");
    char digits[64];
    // Plain digits for numbers of everyday size, an exponent beyond: both are
    // the shortest that read back the same.
    const double size = std::abs(real);
    const bool isEveryday = real == 0 || (size >= 1e-4 && size < 1e16);
    char* end = std::to_chars(digits, digits + sizeof digits - 2, real,
                              isEveryday ? std::chars_format::fixed : std::chars_format::scientific)
                    .ptr;
    if (isEveryday && std::find(digits, end, '.') == end) {
      *end++ = '.';
      *end++ = '0';
    }
    writer_.literal({digits, end});
  }

  void writeList(const ScriptValue& list) {
    writer_.beginArray();
    forEachPrefetched(list.items(), [this](const ScriptValue& item) { write(item); });
    writer_.endArray();
  }

  void writeRecord(const ScriptValue& record) {
    const Keys* const labels = record.labels();
    if (labels == nullptr || !foundation::areUserLabels(*labels)) {
      return writeFields(record, record.fields());
    }
    const bool isWrapped = areLabelsOfForm(*labels);
    begin(isWrapped);
    for (std::size_t i = 0; i < labels->count(); ++i) {
      writer_.label((*labels)[i].text());
      write(record.labelledValues()[i]);
    }
    end(isWrapped);
  }

  void writeFields(const ScriptValue& record, const std::vector<ScriptField>& fields) {
    const bool isPlain = record.type() == kPlainRecord;
    const bool isWrapped = isPlain && areFieldsOfForm(fields);
    begin(isWrapped);
    if (!isPlain) writeClass(record.type());
    for (const ScriptField& field : fields) writeField(field);
    end(isWrapped);
  }

  // Begins the object of a record, inside of another one where a plain record would be
  // taken for a special form.
  void begin(bool isWrapped) {
    if (isWrapped) {
      writer_.beginObject();
      writer_.label(u"$record");
    }
    writer_.beginObject();
  }

  void end(bool isWrapped) {
    writer_.endObject();
    if (isWrapped) writer_.endObject();
  }

  void writeField(const ScriptField& field) {
    if (!plainUserFields(field)) {
      writeKeyword(field.keyword);
      return write(field.value);
    }
    const auto items = field.value.items();
    for (std::size_t i = 0; i < items.size(); i += 2) {
      writeLabel(items[i]);
      write(items[i + 1]);
    }
  }

  [[gnu::noinline]] void writeClass(FourCharCode type) {
    writeKeyword("pcls"_code);
    form(u"$type", foundation::textFromCode(type));
  }
  [[gnu::noinline]] void writeKeyword(FourCharCode keyword) {
    writer_.label(foundation::keyFromKeyword(keyword));
  }
  [[gnu::noinline]] void writeLabel(const ScriptValue& label) {
    writer_.label(core::textFromScriptValue(label)->view());
  }

  // The types that have a form of their own; false when this value is not in it.
  bool writeOther(const ScriptValue& value) {
    switch (number(value.type())) {
      case number("msng"_code):
        writer_.literal("null");
        return true;
      case number("null"_code):
        writer_.beginObject();
        writer_.label(u"$null");
        writeBoolean(true);
        writer_.endObject();
        return true;
      case number("type"_code):
        if (!value.namedCode()) return false;
        if (value.isMissingValue()) {
          writer_.literal("null");
          return true;
        }
        form(u"$type", foundation::textFromCode(*value.namedCode()));
        return true;
      case number("enum"_code):
        return writeEnumerator(value);
      case number("ldt "_code):
        return writeDate(value);
      case number("furl"_code):
        return writeFile(value);
      case number("alis"_code):
        return writePath(u"$alias", value.payload());
      case number("fsrf"_code):
        return writePath(u"$fsrf", value.payload());
      case number("rdat"_code):
        form(u"$data", foundation::base64FromBytes(value.payload()));
        return true;
      case number("scpt"_code):
        form(u"$script", foundation::base64FromBytes(value.payload()));
        return true;
      default:
        return false;
    }
  }

  bool writeEnumerator(const ScriptValue& value) {
    const auto code = value.plain<FourCharCode>();
    if (!code) return false;
    form(u"$enum", foundation::plainTextFromCode(*code));
    return true;
  }

  bool writeDate(const ScriptValue& value) {
    const auto seconds = value.plain<std::int64_t>();
    if (!seconds) return false;
    if (const auto date = foundation::iso8601FromLongDateTime(*seconds)) {
      form(u"$date", *date);
    } else {
      writer_.beginObject();
      writer_.label(u"$ldt");
      writeInteger(*seconds);
      writer_.endObject();
    }
    return true;
  }

  bool writeFile(const ScriptValue& value) {
    const auto url = foundation::parseUrl(value.payload());
    const auto path = url ? foundation::filePath(*url) : std::nullopt;
    if (path && writePath(u"$file", *path)) return true;
    const auto payload = foundation::utf16FromUtf8(value.payload());
    if (payload) form(u"$url", *payload);
    return payload.has_value();
  }

  bool writePath(std::u16string_view label, std::string_view path) {
    while (path.size() > 1 && path.ends_with('/')) path.remove_suffix(1);
    if (!path.starts_with('/') || path.find('\0') != std::string_view::npos) return false;
    form(label, foundation::textFromFileName(path));
    return true;
  }

  void writeRaw(const ScriptValue& value) {
    writer_.beginObject();
    writer_.label(u"$raw");
    writer_.text(foundation::textFromCode(value.type()));
    writer_.label(u"data");
    writer_.text(foundation::utf16FromUtf8Replacing(foundation::base64FromBytes(value.payload())));
    writer_.endObject();
  }

  JsonWriter writer_;
};

template <class Write>
void writeThrough(const JsonSink& sink, Write&& write) {
  ValueWriter writer(sink);
  write(writer);
  writer.flush();
}

}  // namespace

void writeTypedJson(const ScriptValue& value, const JsonSink& sink) {
  writeThrough(sink, [&](ValueWriter& writer) { writer.write(value); });
}

bool hasResult(const core::Reply& reply) {
  const auto* const result = std::get_if<std::optional<ScriptValue>>(&reply);
  return result == nullptr ? !std::holds_alternative<core::ScriptError>(reply)
                           : result->has_value();
}

void writeResult(const core::Reply& reply, const JsonSink& sink) {
  writeThrough(sink, [&](ValueWriter& writer) { writer.writeResult(reply); });
}

void writeReply(const core::Reply& reply, const JsonSink& sink) {
  writeThrough(sink, [&](ValueWriter& writer) {
    if (const auto* error = std::get_if<core::ScriptError>(&reply)) {
      writer.writeError(*error);
    } else {
      writer.writeReply(reply);
    }
  });
}

std::string typedJson(const ScriptValue& value) {
  std::string text;
  writeTypedJson(value, [&text](std::string_view piece) { text += piece; });
  return text;
}

}  // namespace skerrow::scripting
