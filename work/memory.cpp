#include "work/memory.h"

#include <malloc.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <limits>

namespace skerrow::work {

namespace {

// The allowance while nobody measures. Half of what the number holds, as what is left is
// more than the allowance where less than nothing has been taken.
constexpr std::int64_t kUnmeasured = std::numeric_limits<std::int64_t>::max() / 2;
constexpr std::size_t kMost = static_cast<std::size_t>(kUnmeasured);

}  // namespace

namespace detail {
constinit thread_local Tally tally = {0, kUnmeasured};
}  // namespace detail

namespace {

using detail::tally;

std::size_t sum(std::int64_t taken, std::size_t more) noexcept {
  const std::size_t before = taken > 0 ? static_cast<std::size_t>(taken) : 0;
  return before > kMost - std::min(more, kMost) ? kMost : before + more;
}

// Throws what the library's own operator would, or MemoryExceeded. The room that a block
// takes is what the allocator made of the request.
template <class Take>
void* counted(std::size_t size, Take&& take) {
  const auto left = tally.allowance - tally.taken;
  if (size > kMost || static_cast<std::int64_t>(size) > left) {
    throw MemoryExceeded(sum(tally.taken, size), static_cast<std::size_t>(tally.allowance));
  }
  void* const block = take();
  if (block == nullptr) throw std::bad_alloc();
  tally.taken += static_cast<std::int64_t>(::malloc_usable_size(block));
  return block;
}

// A block that is about to be given back.
void* uncounted(void* block) noexcept {
  if (block != nullptr) tally.taken -= static_cast<std::int64_t>(::malloc_usable_size(block));
  return block;
}

}  // namespace

std::size_t memoryLeft() noexcept {
  return static_cast<std::size_t>(std::max<std::int64_t>(tally.allowance - tally.taken, 0));
}

void requireMemory(std::size_t count, std::size_t bytesEach, const std::string& what) {
  std::size_t bytes = 0;
  if (__builtin_mul_overflow(count, bytesEach, &bytes)) bytes = kMost;
  if (bytes <= memoryLeft()) return;
  throw ResultTooLarge(sum(tally.taken, bytes), static_cast<std::size_t>(tally.allowance), what);
}

MemoryScope::MemoryScope(std::size_t allowance) noexcept : before_(tally) {
  const std::size_t available = std::min({allowance, memoryLeft(), kMost});
  tally = {0, static_cast<std::int64_t>(available)};
}

MemoryScope::~MemoryScope() { tally = {before_.taken + tally.taken, before_.allowance}; }

std::string sizeInWords(std::size_t bytes) {
  constexpr std::array<const char*, 6> kUnits = {"KB", "MB", "GB", "TB", "PB", "EB"};
  if (bytes < 1000) return std::to_string(bytes) + " bytes";
  double size = static_cast<double>(bytes) / 1000;
  std::size_t unit = 0;
  while (size >= 999.95 && unit + 1 < kUnits.size()) {
    size /= 1000;
    ++unit;
  }
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), size < 10 ? "%.1f %s" : "%.0f %s", size, kUnits[unit]);
  return text.data();
}

}  // namespace skerrow::work

// The operators of the whole program. The nothrow forms of the standard library, and those for
// arrays where nothing else is said, come here too.

using skerrow::work::counted;
using skerrow::work::uncounted;

#ifdef SKERROW_WRAPS_ALLOCATION

// A program under a sanitizer has the sanitizer's operators, and the linker leads every call of
// them by here.

// NOLINTBEGIN(bugprone-reserved-identifier): the names are the linker's
extern "C" {

void* __real__Znwm(std::size_t size);
void* __real__Znam(std::size_t size);
void* __real__ZnwmSt11align_val_t(std::size_t size, std::align_val_t alignment);
void __real__ZdlPv(void* block) noexcept;
void __real__ZdlPvm(void* block, std::size_t size) noexcept;
void __real__ZdaPv(void* block) noexcept;
void __real__ZdaPvm(void* block, std::size_t size) noexcept;
void __real__ZdlPvSt11align_val_t(void* block, std::align_val_t alignment) noexcept;
void __real__ZdlPvmSt11align_val_t(void* block, std::size_t size,
                                   std::align_val_t alignment) noexcept;

void* __wrap__Znwm(std::size_t size) {
  return counted(size, [size] { return __real__Znwm(size); });
}
void* __wrap__Znam(std::size_t size) {
  return counted(size, [size] { return __real__Znam(size); });
}
void* __wrap__ZnwmSt11align_val_t(std::size_t size, std::align_val_t alignment) {
  return counted(size, [=] { return __real__ZnwmSt11align_val_t(size, alignment); });
}
void __wrap__ZdlPv(void* block) noexcept { __real__ZdlPv(uncounted(block)); }
void __wrap__ZdlPvm(void* block, std::size_t size) noexcept {
  __real__ZdlPvm(uncounted(block), size);
}
void __wrap__ZdaPv(void* block) noexcept { __real__ZdaPv(uncounted(block)); }
void __wrap__ZdaPvm(void* block, std::size_t size) noexcept {
  __real__ZdaPvm(uncounted(block), size);
}
void __wrap__ZdlPvSt11align_val_t(void* block, std::align_val_t alignment) noexcept {
  __real__ZdlPvSt11align_val_t(uncounted(block), alignment);
}
void __wrap__ZdlPvmSt11align_val_t(void* block, std::size_t size,
                                   std::align_val_t alignment) noexcept {
  __real__ZdlPvmSt11align_val_t(uncounted(block), size, alignment);
}
}
// NOLINTEND(bugprone-reserved-identifier)

#else

void* operator new(std::size_t size) {
  return counted(size, [size] { return std::malloc(size == 0 ? 1 : size); });
}

void* operator new(std::size_t size, std::align_val_t alignment) {
  const auto boundary = static_cast<std::size_t>(alignment);
  const std::size_t rounded = (size + boundary - 1) / boundary * boundary;
  return counted(size,
                 [=] { return std::aligned_alloc(boundary, rounded == 0 ? boundary : rounded); });
}

void operator delete(void* block) noexcept { std::free(uncounted(block)); }
void operator delete(void* block, std::size_t /*size*/) noexcept { std::free(uncounted(block)); }
void operator delete(void* block, std::align_val_t /*alignment*/) noexcept {
  std::free(uncounted(block));
}
void operator delete(void* block, std::size_t /*size*/, std::align_val_t /*alignment*/) noexcept {
  std::free(uncounted(block));
}

#endif
