#include "arbor/table/cells/secret_hash.h"

#include <unistd.h>

#include <chrono>
#include <random>

namespace arbor::tree {

namespace {

// Where the system has no random numbers to give, the time and the address of the stack serve.
hash_secret from_time_and_place() noexcept {
  const auto time =
      static_cast<std::uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count());
  std::mt19937_64 random(time ^ reinterpret_cast<std::uintptr_t>(&time));
  return {random(), random(), random()};
}

hash_secret drawn() noexcept {
  hash_secret secret{};
  if (getentropy(&secret, sizeof secret) != 0) secret = from_time_and_place();
  secret.low_factor |= 1U;  // an even factor would lose the highest bit of a number
  return secret;
}

}  // namespace

const hash_secret process_secret = drawn();

}  // namespace arbor::tree
