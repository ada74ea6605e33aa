#include "tools/thread_option.h"

#include <fmt/format.h>

#include "arbor/csv/shown_text.h"
#include "tools/command_line.h"
#include "tools/table_options.h"

namespace arbor::tools {

void add_threads(CLI::App& command, std::string& given) {
  command
      .add_option("--threads", given, "Number of threads (default: one for each processor core)")
      ->type_name("N");
}

unsigned int thread_count(const std::string& given) {
  constexpr unsigned int most_threads = 1024;  // a greater number is a mistake, not a machine
  if (given.empty()) return 0;
  const unsigned int count = whole_value("--threads", given);
  refuse_if(count == 0 || count > most_threads,
            fmt::format("--threads: {} is not from 1 to {}", tree::in_quotes(given), most_threads));
  return count;
}

}  // namespace arbor::tools
