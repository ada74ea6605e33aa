// Compares the binary logarithms of the measures with those of the C library, for one of STEP
// floats above 0.
//
//   check_logarithm STEP
//
// With STEP 1 this takes a minute. Prints how many floats were compared, and each difference; ends
// with 1 if there is one.

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <thread>
#include <vector>

#include "arbor/model/measure/logarithm.h"
#include "arbor/model/weight_type.h"

namespace {

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

constexpr std::uint64_t block = 1000;  // floats that are compared at once

// Compares the floats of a block, from `first` on, and returns how many differ.
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

std::uint64_t all_differences(std::uint64_t first, std::uint64_t last, std::uint64_t step) {
  std::atomic<std::uint64_t> next{first};
  std::atomic<std::uint64_t> differences{0};
  const auto work = [&] {
    for (std::uint64_t at = next.fetch_add(block * step); at < last;
         at = next.fetch_add(block * step))
      differences += differences_of_floats(at, std::min(at + block * step, last), step);
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
  const std::uint64_t differences = all_differences(1, infinity, step);
  std::printf("%llu floats compared, %llu logarithms differ\n",
              static_cast<unsigned long long>((infinity - 1 + step - 1) / step),
              static_cast<unsigned long long>(differences));
  return differences == 0 ? 0 : 1;
}
