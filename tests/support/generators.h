#pragma once
// Random values of every sort for properties, small ones and the ends of ranges
// more often than chance would have it.

#include <string>
#include <vector>

#include "tests/support/describe.h"
#include "tests/support/properties.h"
#include "values/script_value.h"
#include "values/value.h"

namespace skerrow::tests {

rc::Gen<std::u16string> arbitraryUnits();
rc::Gen<std::string> arbitraryBytes();

/// Any pattern of bits, and small whole numbers as often.
rc::Gen<double> anyReal();
rc::Gen<Number> anyNumber();
rc::Gen<Value> anyValue();
rc::Gen<ScriptValue> anyScriptValue();

/// Records whose fields have such labels and values.
rc::Gen<Value> recordsOf(const rc::Gen<std::u16string>& labels, const rc::Gen<Value>& values);

/// The same content in other storage: every number as a real where that is exact,
/// every text and list in blocks of its own, the fields of records backwards.
Value rebuilt(const Value& value);

}  // namespace skerrow::tests

namespace rc {

extern template class Gen<skerrow::Number>;
extern template class Gen<skerrow::Value>;
extern template class Gen<std::vector<skerrow::Value>>;
extern template class Gen<skerrow::ScriptValue>;
extern template class Gen<std::vector<skerrow::ScriptValue>>;

namespace gen {

extern template Gen<std::vector<skerrow::Value>> container<std::vector<skerrow::Value>>(
    Gen<skerrow::Value>);
extern template Gen<std::vector<skerrow::ScriptValue>> container<std::vector<skerrow::ScriptValue>>(
    Gen<skerrow::ScriptValue>);

}  // namespace gen

}  // namespace rc
