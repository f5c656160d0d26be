#include "platform/thread.h"

#include <cstddef>
#include <memory>
#include <system_error>

namespace skerrow::platform {

namespace {

// Room for values of the greatest depth, walked by code that an instrumented build makes
// several times as hungry. The system gives pages as they are touched.
constexpr std::size_t kStackBytes = std::size_t{64} << 20U;

void* runAndForget(void* given) {
  const std::unique_ptr<std::function<void()>> run(static_cast<std::function<void()>*>(given));
  (*run)();
  return nullptr;
}

void require(int status) {
  if (status != 0) throw std::system_error(status, std::generic_category(), "no thread");
}

class Attributes {
 public:
  Attributes() { require(pthread_attr_init(&attributes_)); }
  Attributes(const Attributes&) = delete;
  Attributes& operator=(const Attributes&) = delete;
  ~Attributes() { pthread_attr_destroy(&attributes_); }

  [[nodiscard]] pthread_attr_t* get() noexcept { return &attributes_; }

 private:
  pthread_attr_t attributes_{};
};

}  // namespace

Thread::Thread(std::function<void()> run) {
  auto given = std::make_unique<std::function<void()>>(std::move(run));
  Attributes attributes;
  require(pthread_attr_setstacksize(attributes.get(), kStackBytes));
  pthread_t thread{};
  require(pthread_create(&thread, attributes.get(), runAndForget, given.get()));
  thread_ = thread;
  static_cast<void>(given.release());
}

Thread::~Thread() {
  if (thread_) join();
}

void Thread::join() { pthread_join(*std::exchange(thread_, std::nullopt), nullptr); }

void Thread::detach() { pthread_detach(*std::exchange(thread_, std::nullopt)); }

}  // namespace skerrow::platform
