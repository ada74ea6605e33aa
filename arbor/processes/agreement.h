// Failures that all processes know of, so that all of them end and one says why.
//
//   table rows = agreed(group, [&] { return load_own_rows(); });
#ifndef ARBOR_PROCESSES_AGREEMENT_H
#define ARBOR_PROCESSES_AGREEMENT_H

#include <exception>
#include <optional>
#include <stdexcept>
#include <type_traits>
#include <utility>

#include "arbor/processes/process_group.h"
#include "arbor/table/thread_pool.h"

namespace arbor::tree {

// Thrown in every process; what() is the message of the first process that has failed.
class agreed_failure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Collective. The first process whose `own_failure` is not null; their number if there is none.
unsigned int first_failed(process_group& group, const std::exception_ptr& own_failure);

// Collective. Returns if `own_failure` is null in every process; throws agreed_failure otherwise.
void agree(process_group& group, const std::exception_ptr& own_failure);

// Collective. Calls `work`, which does not send or receive anything, and throws agreed_failure if
// it throws in any process. Returns what it returns.
template <class Work>
auto agreed(process_group& group, Work work) -> decltype(work()) {
  if constexpr (std::is_void_v<decltype(work())>) {
    agree(group, failure_of(work));
  } else {
    std::optional<decltype(work())> result;
    agree(group, failure_of([&] { result.emplace(work()); }));
    return std::move(*result);
  }
}

}  // namespace arbor::tree

#endif
