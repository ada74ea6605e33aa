#include "arbor/csv/expansion_limit.h"

#include <fmt/format.h>

#include <algorithm>

#include "arbor/csv/byte_source.h"
#include "arbor/csv/table_error.h"

namespace arbor::tree {

void expansion_limit::check(unsigned long long given, const byte_source& file) const {
  const unsigned long long proportionate = std::max(1ULL << 30U, 100 * file.bytes_of_file());
  const unsigned long long most = bytes > 0 ? bytes : proportionate;
  if (given <= most) return;
  throw table_error(fmt::format(
      "{}: the first {} bytes of the file become more than {}; if they are meant to, {}",
      file.name(), file.bytes_of_file(), most,
      set_by.empty() ? "choose a higher limit" : "choose a higher limit with " + set_by));
}

}  // namespace arbor::tree
