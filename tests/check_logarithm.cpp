// Compares the binary logarithms of the measures with those of the C library, for one number of
// STEP: of all floats above 0, and of the whole numbers that count cuts and that no float holds.
//
//   check_logarithm STEP
//
// With STEP 1 this takes minutes. Prints how many numbers were compared, and each difference; ends
// with 1 if there is one.

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <limits>
#include <thread>
#include <vector>

#include "arbor/model/measure/logarithm.h"
#include "arbor/model/weight_type.h"

namespace {

using arbor::impls::binary_log;
using arbor::impls::log_terms;

float library_log(double x) {
  return static_cast<float>(std::log(x) / static_cast<double>(arbor::impls::weight_type::Log2));
}

float float_of(std::uint64_t bits) {
  const auto pattern = static_cast<std::uint32_t>(bits);
  float result = 0;
  std::memcpy(&result, &pattern, sizeof result);
  return result;
}

std::uint64_t report(double x) {
  std::printf("the logarithm of %a differs\n", x);
  return 1;
}

// Each of the following compares the numbers of a block, from `first` on, and returns how many
// differ.
constexpr std::uint64_t block = 1000;

std::uint64_t differences_of_floats(std::uint64_t first, std::uint64_t last, std::uint64_t step) {
  std::array<float, block> floats{};
  std::array<double, block> terms{};
  std::size_t count = 0;
  for (std::uint64_t bits = first; bits < last; bits += step) floats[count++] = float_of(bits);
  log_terms(floats.data(), count, terms.data());
  std::uint64_t differences = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const auto x = static_cast<double>(floats[i]);
    if (terms[i] != x * static_cast<double>(library_log(x))) differences += report(x);
  }
  return differences;
}

std::uint64_t differences_of_numbers(std::uint64_t first, std::uint64_t last, std::uint64_t step) {
  std::uint64_t differences = 0;
  for (std::uint64_t number = first; number < last; number += step) {
    const auto x = static_cast<double>(number);
    if (binary_log(x) != library_log(x)) differences += report(x);
  }
  return differences;
}

using comparison = std::function<std::uint64_t(std::uint64_t, std::uint64_t, std::uint64_t)>;

std::uint64_t all_differences(std::uint64_t first, std::uint64_t last, std::uint64_t step,
                              const comparison& differences_in_block) {
  std::atomic<std::uint64_t> next{first};
  std::atomic<std::uint64_t> differences{0};
  const auto work = [&] {
    for (std::uint64_t at = next.fetch_add(block * step); at < last;
         at = next.fetch_add(block * step))
      differences += differences_in_block(at, std::min(at + block * step, last), step);
  };
  std::vector<std::thread> threads(std::max(1U, std::thread::hardware_concurrency()));
  for (std::thread& thread : threads) thread = std::thread(work);
  for (std::thread& thread : threads) thread.join();
  return differences;
}

}  // namespace

int main(int argc, char** argv) {
  const std::uint64_t step = argc == 2 ? std::strtoull(argv[1], nullptr, 10) : 0;
  if (step == 0) {
    std::puts("usage: check_logarithm STEP");
    return 2;
  }
  constexpr std::uint64_t infinity = 0x7F800000;  // its bits; those of the floats below are less
  constexpr std::uint64_t first_between_floats = 1U << 24U;
  constexpr std::uint64_t numbers_end = 1ULL << 32U;
  const std::uint64_t differences =
      all_differences(1, infinity, step, differences_of_floats) +
      all_differences(first_between_floats, numbers_end, step, differences_of_numbers);
  const auto compared = [&](std::uint64_t count) {
    return static_cast<unsigned long long>((count + step - 1) / step);
  };
  std::printf("%llu floats and %llu whole numbers compared, %llu logarithms differ\n",
              compared(infinity - 1), compared(numbers_end - first_between_floats),
              static_cast<unsigned long long>(differences));
  return differences == 0 ? 0 : 1;
}
