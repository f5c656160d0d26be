#include "work/stopping.h"

namespace skerrow::work {

namespace detail {
constinit thread_local const std::stop_token* watched = nullptr;
}  // namespace detail

std::stop_token stopToken() {
  return detail::watched == nullptr ? std::stop_token() : *detail::watched;
}

}  // namespace skerrow::work
