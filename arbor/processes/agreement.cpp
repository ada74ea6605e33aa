#include "arbor/processes/agreement.h"

#include <new>
#include <string>
#include <vector>

namespace arbor::tree {

namespace {

std::string message_of(const std::exception_ptr& failure) {
  try {
    std::rethrow_exception(failure);
  } catch (const std::bad_alloc&) {
    return "out of memory";
  } catch (const std::exception& error) {
    return error.what();
  }
}

}  // namespace

unsigned int first_failed(process_group& group, const std::exception_ptr& own_failure) {
  std::vector<std::uint32_t> first{own_failure ? group.rank() : group.size()};
  group.take_least(first);
  return first[0];
}

void agree(process_group& group, const std::exception_ptr& own_failure) {
  const unsigned int failed = first_failed(group, own_failure);
  if (failed == group.size()) return;
  std::vector<char> message;
  if (group.rank() == failed) {
    const std::string own = message_of(own_failure);
    message.assign(own.begin(), own.end());
  }
  group.broadcast(message, failed);
  throw agreed_failure(std::string(message.begin(), message.end()));
}

}  // namespace arbor::tree
