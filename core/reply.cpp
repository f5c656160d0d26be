#include "core/reply.h"

#include <utility>
#include <vector>

namespace skerrow::core {

Reply gathered(Reply reply) {
  const auto* const items = std::get_if<std::shared_ptr<ReplyItems>>(&reply);
  if (items == nullptr) return reply;
  try {
    std::vector<ScriptValue> all;
    while (auto item = (*items)->next()) all.push_back(std::move(*item));
    return ScriptValue::list(std::move(all));
  } catch (const ScriptError& error) {
    return error;
  }
}

}  // namespace skerrow::core
