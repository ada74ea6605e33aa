// The replaced operator new. What is left behind is LeakSanitizer's business.

#include "tests/support/allocations.h"

#include <atomic>
#include <cstdlib>

static std::atomic<arbor::tests::failing> now{arbor::tests::failing::none};
static std::atomic<int> until_failure;
static std::atomic<bool> has_failed;

bool arbor::tests::fail(failing which, int number) {
  until_failure = number;
  now = which;
  return has_failed.exchange(false);
}

static void* allocate(std::size_t size, bool throws) {
  using arbor::tests::failing;
  const failing which = now;
  bool fails = which != failing::none && (which != failing::nothrow_new || !throws);
  if (fails) {
    const int number = until_failure--;
    fails = number == 1 || (number < 1 && which != failing::one);
  }
  if (fails) has_failed = true;
  void* const memory = fails ? nullptr : std::malloc(size);  // NOLINT(cppcoreguidelines-no-malloc)
  if (memory == nullptr && throws) throw std::bad_alloc();
  return memory;
}

void* operator new(std::size_t size) {
  return allocate(size, true);
}
void* operator new[](std::size_t size) {
  return allocate(size, true);
}
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
  return allocate(size, false);
}
void* operator new[](std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
  return allocate(size, false);
}

// Every operator delete frees what malloc has allocated, which AddressSanitizer is not to report.
extern "C" const char* __asan_default_options() {  // NOLINT: its name is given
  return "alloc_dealloc_mismatch=0";
}
