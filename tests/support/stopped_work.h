#pragma once
// StoppedWork: work of this thread that was told to stop before it began, so that its
// first look ends it.

#include <stop_token>

#include "work/stopping.h"

namespace skerrow::tests {

class StoppedWork {
 public:
  StoppedWork() = default;

 private:
  static std::stop_token stopped() {
    std::stop_source source;
    source.request_stop();
    return source.get_token();
  }

  work::StopScope scope_{stopped()};
};

}  // namespace skerrow::tests
