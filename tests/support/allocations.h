// Lets the allocations of operator new fail one after the other, and tells what is left of those
// that were made.
//
//   fail_each("clone", [] { return make_column("discrete", "string", {"a"}); },
//             [](auto& x) { return saved(*std::unique_ptr<column>(x->clone(false))); },
//             [](auto& x) { return saved(*x); });
#ifndef ARBOR_TESTS_SUPPORT_ALLOCATIONS_H
#define ARBOR_TESTS_SUPPORT_ALLOCATIONS_H

#include <gtest/gtest.h>

#include <new>
#include <string>

#include "arbor/utils/no_storage.h"

namespace arbor::tests {

namespace allocations {

enum class failing { none, one, all_later, not_throwing };

// Lets the `number`-th allocation from now on fail, or all from there on, or all of those that tell
// by a null pointer.
void fail(failing which, std::size_t number = 1);
// Lets none fail any more. Returns whether one has.
bool stop_failing();

// How many have been made.
unsigned long long made();
// How many of those made since are left, but for the known values of domains, which no frozen
// domain releases. No other thread may allocate meanwhile.
std::size_t left_since(unsigned long long already_made);

}  // namespace allocations

// Whether `act` is stopped by a lack of storage.
template <class Act>
bool lacks_storage(Act act) {
  try {
    act();
    return false;
  } catch (const std::bad_alloc&) {
    return true;
  } catch (const strata::util::no_storage&) {
    return true;
  }
}

// Calls `act` on an object that `make` makes, with the first allocation failing, with the second,
// and so on until it needs no more, for each on a new object; and then the same with all later ones
// failing too. What a failure leaves must be `told` as before, give the same answer when it is
// acted on again, be told as without a failure then, and be released as a whole. With a `stride`
// above 1 most of the later allocations are left out.
template <class Make, class Act, class Tell>
void fail_each(const std::string& name, Make make, Act act, Tell tell, std::size_t stride = 1) {
  std::string before, answer, after;
  {
    auto object = make();
    before = tell(object);
    answer = act(object);
    after = tell(object);
  }
  for (const auto which : {allocations::failing::one, allocations::failing::all_later}) {
    bool failed = true;
    for (std::size_t number = 1; failed; number += number < 40 ? 1 : stride) {
      SCOPED_TRACE(name + ", allocation " + std::to_string(number));
      const unsigned long long already_made = allocations::made();
      {
        auto object = make();
        std::string got;
        allocations::fail(which, number);
        const bool lacked = lacks_storage([&] { got = act(object); });
        failed = allocations::stop_failing();
        EXPECT_TRUE(failed || !lacked);
        if (lacked) {
          EXPECT_EQ(tell(object), before);
          got = act(object);
        }
        EXPECT_EQ(got, answer);
        EXPECT_EQ(tell(object), after);
      }
      EXPECT_EQ(allocations::left_since(already_made), 0U);
      if (testing::Test::HasFailure()) return;
    }
  }
}

// The same for what changes nothing, acted with again and again.
template <class Act>
void fail_each(const std::string& name, Act act, std::size_t stride = 1) {
  fail_each(
      name, [] { return 0; }, [&](int) { return act(); }, [](int) { return ""; }, stride);
}

}  // namespace arbor::tests

#endif
