#include "arbor/processes/statistics_report.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <vector>

#include "arbor/report/text_table.h"

namespace arbor::tree {

namespace {

// Without its name, for which there is no room of one size.
struct phase_numbers {
  double seconds;
  double processor_seconds;
  std::uint64_t bytes;
  std::uint64_t messages;
};

using phases = std::vector<phase_traffic>;

// By process.
std::vector<phases> phases_of_all(process_group& group) {
  std::string own_names;
  std::vector<phase_numbers> own_numbers;
  for (const phase_traffic& phase : group.statistics().by_phase()) {
    own_names += phase.phase + '\n';
    own_numbers.push_back({phase.seconds, phase.processor_seconds, phase.bytes, phase.messages});
  }
  const std::vector<std::uint64_t> counts =
      group.gathered(std::vector<std::uint64_t>{own_numbers.size()});
  const std::vector<char> names =
      group.gathered(std::vector<char>(own_names.begin(), own_names.end()));
  const std::vector<phase_numbers> numbers = group.gathered(own_numbers);

  std::vector<phases> result;
  auto name = names.begin();
  auto next = numbers.begin();
  for (const std::uint64_t count : counts) {
    result.emplace_back();
    for (std::uint64_t i = 0; i < count; ++i, ++next) {
      const auto end = std::find(name, names.end(), '\n');
      result.back().push_back({std::string(name, end), next->seconds, next->processor_seconds,
                               next->bytes, next->messages});
      name = end + 1;
    }
  }
  return result;
}

void add_phase(phase_traffic& sum, const phase_traffic& added) {
  sum.seconds += added.seconds;
  sum.processor_seconds += added.processor_seconds;
  sum.bytes += added.bytes;
  sum.messages += added.messages;
}

std::vector<std::string> line_of(const std::string& process, const phase_traffic& phase) {
  return {phase.phase,
          process,
          fmt::format("{:.3f}", phase.seconds),
          fmt::format("{:.3f}", phase.processor_seconds),
          std::to_string(phase.bytes),
          std::to_string(phase.messages)};
}

}  // namespace

void write_statistics(std::ostream& out, process_group& group) {
  const std::vector<phases> by_process = phases_of_all(group);
  phases sums;  // by process
  phases in_order;
  for (const phases& of_process : by_process) {
    sums.push_back({"total", 0, 0, 0, 0});
    for (const phase_traffic& phase : of_process) add_phase(sums.back(), phase);
    in_order.insert(in_order.end(), of_process.begin(), of_process.end());
  }

  std::vector<std::vector<std::string>> lines{
      {"phase", "process", "seconds", "processor seconds", "bytes", "messages"}};
  std::vector<std::string> done;
  for (const phase_traffic& phase : in_order) {
    if (std::count(done.begin(), done.end(), phase.phase) > 0) continue;
    done.push_back(phase.phase);
    for (std::size_t process = 0; process < by_process.size(); ++process) {
      for (const phase_traffic& same : by_process[process])
        if (same.phase == phase.phase) lines.push_back(line_of(std::to_string(process), same));
    }
  }
  phase_traffic sum{"total", 0, 0, 0, 0};
  double longest = 0;
  for (std::size_t process = 0; process < sums.size(); ++process) {
    lines.push_back(line_of(std::to_string(process), sums[process]));
    add_phase(sum, sums[process]);
    longest = std::max(longest, sums[process].seconds);
  }
  sum.seconds = longest;  // they run side by side
  lines.push_back(line_of("all", sum));
  out << aligned(lines, "llrrrr");
}

}  // namespace arbor::tree
