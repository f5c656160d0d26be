#pragma once
// ScriptCompiler: what turns the source text of a script into compiled data. The
// script engine implements it; commands reach it through their context.

#include <string>
#include <string_view>
#include <variant>

#include "values/record.h"

namespace skerrow::core {

class ScriptCompiler {
 public:
  ScriptCompiler() = default;
  ScriptCompiler(const ScriptCompiler&) = delete;
  ScriptCompiler& operator=(const ScriptCompiler&) = delete;
  virtual ~ScriptCompiler() = default;

  /// The compiled data, or a record that says what is wrong and where.
  [[nodiscard]] virtual std::variant<std::string, Record> compile(
      std::u16string_view source) const = 0;
};

/// For a process without a script engine: every script fails to compile, and the
/// record says why.
class NoScriptCompiler final : public ScriptCompiler {
 public:
  [[nodiscard]] std::variant<std::string, Record> compile(
      std::u16string_view source) const override;
};

}  // namespace skerrow::core
