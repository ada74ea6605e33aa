// A library to preload: makes the allocation with the number FAIL_AT fail, counted from the start
// of the process, before main too.
//
//   FAIL_AT=7 LD_PRELOAD=libfailing_malloc.so arbor --version

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdlib>

extern "C" void* __libc_malloc(std::size_t size);  // NOLINT: the C library gives it this name

extern "C" void* malloc(std::size_t size) noexcept {
  static std::atomic<long> number{0};
  const char* const failing = std::getenv("FAIL_AT");
  if (failing == nullptr || ++number != std::strtol(failing, nullptr, 10))
    return __libc_malloc(size);
  errno = ENOMEM;
  return nullptr;
}
