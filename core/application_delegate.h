#pragma once
// ApplicationDelegate: what commands may ask of the application that they run in.

namespace skerrow::core {

class ApplicationDelegate {
 public:
  ApplicationDelegate() = default;
  ApplicationDelegate(const ApplicationDelegate&) = delete;
  ApplicationDelegate& operator=(const ApplicationDelegate&) = delete;
  virtual ~ApplicationDelegate() = default;

  /// Restarts the timer that ends an idle application. Callable on any thread.
  virtual void startQuitTimer() = 0;
  /// Stops that timer. Callable on any thread.
  virtual void invalidateQuitTimer() = 0;
};

/// For a process that is not the application and ends when its work does.
class NoApplication final : public ApplicationDelegate {
 public:
  void startQuitTimer() override {}
  void invalidateQuitTimer() override {}
};

}  // namespace skerrow::core
