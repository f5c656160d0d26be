#pragma once
// Performing commands of this room with Values, for laws that hold for all values,
// and values of which few are different, so that equal ones meet.

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/generators.h"
#include "values/script_value.h"
#include "values/value.h"

namespace skerrow::lists {

using Items = std::vector<Value>;
using NamedValues = std::vector<std::pair<std::string, Value>>;

ScriptValue packed(const Value& value);

/// The value as it is once it has been through a command.
Value settled(const Value& value);

/// The result of a command; an error fails the property.
Value resultOf(const std::string& command, const Value& direct, const NamedValues& arguments = {});

Items itemsOf(const Value& list);

/// Tells storage kinds and orders apart, unlike equality.
bool isExactly(const Value& a, const Value& b);

Value boolean(bool isTrue);
Value integer(std::size_t value);

rc::Gen<std::u16string> fewTexts();
rc::Gen<Value> fewValues(int depth = 2);
rc::Gen<Value> fewRecords(int depth = 2);
rc::Gen<Value> fewLists(int depth = 2);

/// Several values of a generator, as a list.
rc::Gen<Value> listOf(const rc::Gen<Value>& items);

}  // namespace skerrow::lists
