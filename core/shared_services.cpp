#include "core/shared_services.h"

namespace skerrow::core {

SharedServices::Holder SharedServices::service(std::type_index type, Holder (*make)()) {
  const std::lock_guard lock(mutex_);
  Holder& held = services_[type];
  if (held == nullptr) held = make();
  return held;
}

}  // namespace skerrow::core
