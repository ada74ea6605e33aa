// Makes allocations of operator new fail, one after the other.
//
//   fail_each("clone", [] { return make_column("discrete", "string", {"a"}); },
//             [](auto& x) { return record_of(std::unique_ptr<column>(x->clone(false)).get()); },
//             [](auto& x) { return record_of(x.get()); });
#ifndef ARBOR_TESTS_SUPPORT_ALLOCATIONS_H
#define ARBOR_TESTS_SUPPORT_ALLOCATIONS_H

#include <gtest/gtest.h>

#include <new>
#include <string>

#include "arbor/utils/no_storage.h"

namespace arbor::tests {

enum class failing { none, one, all_later, nothrow_new };

// Makes the `number`-th allocation from now on fail, or all from that one on, or all those that
// report it by a null pointer. Returns whether any has failed since the last call.
bool fail(failing which, int number = 1);

// Calls `act` on an object from `make` with the first allocation failing, then on a new object with
// the second failing, and so on until it needs no more; and all of that again with all later
// allocations failing too. After a failure `show` must give the same text as before, a second call
// of `act` must give the same answer as a call without failures, and `show` the same text as after
// that. With a `stride` above 1 most of the later allocations are left out.
template <class Make, class Act, class Show>
void fail_each(const std::string& name, Make make, Act act, Show show, int stride = 1) {
  auto whole = make();
  const std::string before = show(whole), answer = act(whole), after = show(whole);
  for (const auto which : {failing::one, failing::all_later}) {
    bool failed = true;
    for (int number = 1; failed && !testing::Test::HasFailure();
         number += number < 40 ? 1 : stride) {
      SCOPED_TRACE(name + ", allocation " + std::to_string(number));
      auto object = make();
      std::string got, error;
      fail(which, number);
      try {
        got = act(object);
      } catch (const std::bad_alloc&) {
        error = "no storage";
      } catch (const strata::util::no_storage&) {
        error = "no storage";
      }
      failed = fail(failing::none);
      EXPECT_TRUE(failed || error.empty());
      if (!error.empty()) {
        EXPECT_EQ(show(object), before);
        got = act(object);
      }
      EXPECT_EQ(got, answer);
      EXPECT_EQ(show(object), after);
    }
  }
}

// The same for an `act` that changes nothing.
template <class Act>
void fail_each(const std::string& name, Act act, int stride = 1) {
  const auto nothing = [](int /*object*/ = 0) { return 0; };
  fail_each(
      name, nothing, [&](int) { return act(); }, [](int) { return ""; }, stride);
}

}  // namespace arbor::tests

#endif
