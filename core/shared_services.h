#pragma once
// SharedServices: the objects that commands have in common, such as caches: one
// of each type for all commands of a program, made when it is first asked for.
// This room knows none of the types. Safe to use from any thread.

#include <memory>
#include <mutex>
#include <typeindex>
#include <typeinfo>
#include <unordered_map>
#include <utility>

namespace skerrow::core {

class SharedServices {
 public:
  /// The one object of this type: what was provided, or one made with its default
  /// constructor, which must not ask for other services. It lives as long as anybody
  /// holds it.
  template <class Service>
  [[nodiscard]] std::shared_ptr<Service> of() {
    return std::static_pointer_cast<Service>(
        service(typeid(Service), []() -> Holder { return std::make_shared<Service>(); }));
  }

  /// Gives the one object of this type instead of having it made.
  template <class Service>
  void provide(std::shared_ptr<Service> service) {
    const std::lock_guard lock(mutex_);
    services_.insert_or_assign(typeid(Service), std::move(service));
  }

 private:
  using Holder = std::shared_ptr<void>;

  Holder service(std::type_index type, Holder (*make)());

  std::mutex mutex_;
  std::unordered_map<std::type_index, Holder> services_;  // under mutex_
};

}  // namespace skerrow::core
