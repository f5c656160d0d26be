#pragma once
// Reply: what a command ends with. A result is there as a whole, or comes item by item
// from a source, so that a front end can write a long list while it is being made.

#include <functional>
#include <memory>
#include <optional>
#include <variant>

#include "core/script_error.h"
#include "values/script_value.h"

namespace skerrow::core {

/// The items of a list, made as they are asked for. One thread at a time.
class ReplyItems {
 public:
  ReplyItems() = default;
  ReplyItems(const ReplyItems&) = delete;
  ReplyItems& operator=(const ReplyItems&) = delete;
  virtual ~ReplyItems() = default;

  /// The next item, or nothing at the end. Throws ScriptError; there are no items after it.
  virtual std::optional<ScriptValue> next() = 0;
};

/// A result, nothing, an error, or a list by its items.
using Reply = std::variant<std::optional<ScriptValue>, ScriptError, std::shared_ptr<ReplyItems>>;

/// The same reply as a whole: items that were still to come are gathered into their list.
Reply gathered(Reply reply);

/// Receives the reply of a suspended command, on whichever thread it resumes.
using ReplyReceiver = std::function<void(Reply)>;

}  // namespace skerrow::core
