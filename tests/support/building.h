#pragma once
// Short ways to make script values in tests.

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "values/keys.h"
#include "values/object_reference.h"
#include "values/script_value.h"

namespace skerrow::tests {

inline ScriptValue scriptText(std::u16string_view units) { return ScriptValue::text(Text(units)); }

/// A record of user fields: label, value, label, value.
inline ScriptValue scriptRecord(std::vector<ScriptValue> labelsAndValues) {
  return ScriptValue::record(kPlainRecord,
                             {{kUserFields, ScriptValue::list(std::move(labelsAndValues))}});
}

/// The same made of labels, which must differ, and values.
inline ScriptValue labelledRecord(std::vector<std::pair<std::u16string_view, ScriptValue>> fields) {
  Keys labels;
  std::vector<ScriptValue> values;
  for (auto& [label, value] : fields) {
    labels.append(label);
    values.push_back(std::move(value));
  }
  return ScriptValue::labelledRecord(labels, values);
}

/// A value of any type from a plain number in the host's byte order.
template <class Plain>
ScriptValue plain(FourCharCode type, Plain value) {
  return ScriptValue::withPlain(type, value);
}

/// A file reference by the text of its URL.
inline ScriptValue fileReference(std::string_view url) {
  return ScriptValue::withPayload(FourCharCode{0x6675726C}, url);
}

inline ScriptValue objectReference(std::string path) {
  return ScriptValue::reference(std::make_shared<PathReference>(std::move(path)));
}

}  // namespace skerrow::tests
