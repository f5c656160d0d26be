#pragma once
// Interface: what the interfaces of the system have in common. They are used where
// they stand and never copied.

namespace skerrow::platform {

class Interface {
 public:
  Interface() = default;
  Interface(const Interface&) = delete;
  Interface& operator=(const Interface&) = delete;
  virtual ~Interface() = default;
};

}  // namespace skerrow::platform
