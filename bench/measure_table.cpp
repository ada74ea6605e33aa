// Measures Arbor on a CSV file, and prints a line of JSON.
//
//   arbor_measure_table load people.csv    # reads the table
//   arbor_measure_table rate people.csv    # rates its attributes
//   arbor_measure_table grow people.csv    # grows a tree on it, without pruning
//   arbor_measure_table grow people.csv 8  # the same, with at most 8 tests on a path
//   arbor_measure_table classify people.csv  # classifies it with such a tree
//
// The runs of a phase are printed in seconds of processor time and, as "clock", of the clock. Its
// memory is that of the whole process during its first run, in bytes: "before" is what was resident
// before it, "peak" the most while it ran.

#include <algorithm>
#include <chrono>
#include <cmath>
#include <ctime>
#include <exception>
#include <fstream>
#include <functional>
#include <iostream>
#include <limits>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>

#include "arbor/model/column_bool.h"
#include "arbor/model/column_typed.h"
#include "arbor/table/table_loader.h"
#include "arbor/tree/classification.h"
#include "arbor/tree/grower.h"
#include "arbor/tree/rating.h"

namespace {

arbor::tree::load_options one_thread() {
  arbor::tree::load_options options;
  options.threads = 1;
  return options;
}

using namespace arbor;
using json = nlohmann::json;

constexpr float min_weight = 2;

tree::grow_options chosen_growing(unsigned int max_depth) {
  tree::grow_options options;
  options.min_weight = min_weight;
  options.max_depth = max_depth;
  options.prune = false;
  options.threads = 1;
  return options;
}

// An entry of /proc/self/status in bytes; the file has it in kB.
std::size_t process_bytes(const std::string& entry) {
  std::ifstream status("/proc/self/status");
  std::string name;
  while (status >> name && name != entry + ":")
    status.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
  std::size_t kilobytes = 0;
  status >> kilobytes;
  return kilobytes * 1024;
}

double processor_seconds() {
  timespec now{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

double clock_seconds() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

// Runs the work of a phase three times; more often when that takes less than a second in all, less
// often when it takes more than a minute. Work that is too short for the clocks is repeated within
// a run.
json measure(const char* phase, const std::function<void()>& work) {
  constexpr double shortest_run = 0.05;
  std::ofstream("/proc/self/clear_refs") << 5;  // the peak begins anew
  json result{{"phase", phase}, {"before", process_bytes("VmRSS")}};
  const double beginning = clock_seconds();
  const auto within = [&](double seconds) { return clock_seconds() - beginning < seconds; };
  double repeats = 1;
  for (int run = 0; run == 0 || (run < 3 && within(60)) || (run < 25 && within(1)); ++run) {
    const double processor_start = processor_seconds();
    const double clock_start = clock_seconds();
    for (auto left = static_cast<std::size_t>(repeats); left > 0; --left) work();
    const double processor_time = (processor_seconds() - processor_start) / repeats;
    const double clock_time = (clock_seconds() - clock_start) / repeats;
    if (run == 0) {
      result["after"] = process_bytes("VmRSS");
      result["peak"] = process_bytes("VmHWM");
      repeats = std::max(1.0, std::ceil(shortest_run / clock_time));
      if (repeats > 1) continue;  // too short to count
    }
    result["seconds"].push_back(processor_time);
    result["clock"].push_back(clock_time);
  }
  return result;
}

unsigned int bits_per_cell(const impls::column& column) {
  const auto is = [&](auto* kind) { return dynamic_cast<decltype(kind)>(&column) != nullptr; };
  if (is(static_cast<const impls::column_bool*>(nullptr))) return 1;
  if (is(static_cast<const impls::column_typed<unsigned char>*>(nullptr))) return 8;
  if (is(static_cast<const impls::column_typed<unsigned short>*>(nullptr))) return 16;
  if (is(static_cast<const impls::column_typed<unsigned int>*>(nullptr))) return 32;
  return is(static_cast<const impls::column_typed<unsigned long long>*>(nullptr)) ? 64 : 0;
}

// What the known values of a column take.
std::size_t domain_bytes(const impls::column& column) {
  const std::string type = column.get_o_set()->get_datatype();
  if (type != "string")
    return (column.get_distinct() - 1) * (type == "double" ? sizeof(double) : sizeof(int));
  std::size_t bytes = 0;
  for (unsigned int code = 1; code < column.get_distinct(); ++code) {
    const std::string text = column.get_value(code);
    const bool apart =
        text.capacity() > std::string().capacity();  // too long to be held in the string itself
    bytes += sizeof(std::string) + (apart ? text.size() + 1 : 0);
  }
  return bytes;
}

// What the table needs for its contents, to hold against what the process takes.
json sizes_of(const tree::table& held) {
  std::size_t codes = 0;
  std::size_t domains = 0;
  for (const auto& column : held.columns) {
    codes += (column->size() * std::size_t{bits_per_cell(*column)} + 7) / 8;
    domains += domain_bytes(*column);
  }
  return {{"rows", held.cases.size()},
          {"attributes", held.columns.size() - 1},
          {"classes", held.class_column().get_distinct() - 1},
          {"codes", codes},
          {"domains", domains},
          {"cases", held.cases.size() * sizeof(held.cases.front())}};
}

json load(const std::string& path) {
  std::unique_ptr<tree::table> held;
  json result = measure("load", [&] {
    held.reset();
    held = std::make_unique<tree::table>(tree::load_table(path, one_thread()));
  });
  result.update(sizes_of(*held));
  return result;
}

json rate(const std::string& path) {
  const tree::table held = tree::load_table(path, one_thread());
  return measure("rate", [&] { tree::rate_attributes(held, held.cases, min_weight); });
}

json grow(const std::string& path, unsigned int max_depth) {
  const tree::table held = tree::load_table(path, one_thread());
  tree::decision_tree grown;
  json result = measure(
      "grow", [&] { grown = tree::grow_tree(held, held.cases, chosen_growing(max_depth)); });
  const tree::tree_size size = tree::size_of(grown);
  result["nodes"] = size.nodes;
  result["leaves"] = size.leaves;
  result["accuracy"] = tree::classify_cases(grown, held, held.cases).accuracy();
  return result;
}

json classify(const std::string& path, unsigned int max_depth) {
  const tree::table held = tree::load_table(path, one_thread());
  const tree::decision_tree grown = tree::grow_tree(held, held.cases, chosen_growing(max_depth));
  return measure("classify", [&] { tree::classify_cases(grown, held, held.cases); });
}

}  // namespace

int main(int argc, char** argv) {
  unsigned int max_depth = tree::grow_options().max_depth;
  const std::map<std::string, std::function<json(const std::string&)>> phases{
      {"load", load},
      {"rate", rate},
      {"grow", [&](const std::string& path) { return grow(path, max_depth); }},
      {"classify", [&](const std::string& path) { return classify(path, max_depth); }}};
  const auto phase = phases.find(argc == 3 || argc == 4 ? argv[1] : "");
  if (phase == phases.end() || (argc == 4 && phase->first != "grow")) {
    std::cerr << "usage: arbor_measure_table load|rate|grow|classify TABLE\n"
                 "       arbor_measure_table grow TABLE MAX_DEPTH\n";
    return 2;
  }
  try {
    if (argc == 4) max_depth = static_cast<unsigned int>(std::stoul(argv[3]));
    std::cout << phase->second(argv[2]) << '\n';
  } catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return 2;
  }
}
