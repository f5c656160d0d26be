#include "core/script_compiler.h"

namespace skerrow::core {

std::variant<std::string, Record> NoScriptCompiler::compile(std::u16string_view /*source*/) const {
  return Record{{Value(u"message"), Value(u"This program has no script engine to compile with.")}};
}

}  // namespace skerrow::core
