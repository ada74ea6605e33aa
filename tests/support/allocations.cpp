// The replaced operator new. Leaks are LeakSanitizer's business.

#include "tests/support/allocations.h"

#include <atomic>
#include <cstdlib>

using arbor::tests::failing;

static std::atomic<failing> now{failing::none};
static std::atomic<int> until_failure;
static std::atomic<bool> has_failed;

bool arbor::tests::fail(failing which, int number) {
  until_failure = number;
  now = which;
  return has_failed.exchange(false);
}

void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
  if (now != failing::none) {
    const int number = until_failure--;
    if (number == 1 || (number < 1 && now != failing::one)) {
      has_failed = true;
      return nullptr;
    }
  }
  return std::malloc(size);  // NOLINT(cppcoreguidelines-no-malloc)
}
void* operator new(std::size_t size) {
  void* const memory = now == failing::nothrow_new ? std::malloc(size)  // NOLINT
                                                   :
                                                   operator new(size, std::nothrow);
  return memory != nullptr ? memory : throw std::bad_alloc();
}
void* operator new[](std::size_t size) {
  return operator new(size);
}
void* operator new[](std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
  return operator new(size, std::nothrow);
}

// Every operator delete frees what malloc has allocated. AddressSanitizer must not report that.
extern "C" const char* __asan_default_options() {  // NOLINT: its name is given
  return "alloc_dealloc_mismatch=0";
}
