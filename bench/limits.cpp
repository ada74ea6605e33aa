// Takes the library to its limits, and prints what each costs.
//
//   arbor_limits           # all of them
//   arbor_limits column    # those whose name has this text in it
//
// Every limit has a process of its own, so that the peak of resident memory is that of the limit
// alone.

#include <fmt/format.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <exception>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "arbor/model/column_bool.h"
#include "arbor/model/column_typed.h"
#include "arbor/store/model_store.h"
#include "arbor/table/table_loader.h"
#include "arbor/tree/grower.h"
#include "arbor/utils/file_device.h"
#include "arbor/utils/ibinstream.h"
#include "arbor/utils/obinstream.h"

namespace {

arbor::tree::load_options one_thread() {
  arbor::tree::load_options options;
  options.threads = 1;
  return options;
}

using namespace arbor;
using impls::column;
using impls::o_set;

constexpr unsigned int most_rows = 4294967295U;

// The file that the limits are written to; the same in every process.
const std::string& scratch() {
  static const std::string path =
      fmt::format("{}/arbor_limits_{}", std::filesystem::temp_directory_path().string(), getpid());
  return path;
}

double seconds(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Prints a step of a limit and how long it took, or the message that refused it.
void step(const std::string& name, const std::function<void()>& work) {
  std::string refusal;
  const double taken = seconds([&] {
    try {
      work();
    } catch (const std::exception& error) {
      refusal = error.what();
    }
  });
  if (refusal.size() > 160)
    refusal = fmt::format("{} ... ({} bytes)", refusal.substr(0, 160), refusal.size());
  fmt::print("  {:<52}{:>10.3f} s  {}\n", name, taken, refusal);
}

void write_file(const std::function<void(std::ofstream&)>& write) {
  std::ofstream out(scratch(), std::ios::binary);
  write(out);
}

void load(const std::string& name, const tree::load_options& options = one_thread()) {
  step(name, [&] { tree::load_table(scratch(), options); });
}

void one_long_cell() {
  std::string text;
  text.resize(100'000'000, 'x');
  write_file([&](std::ofstream& out) { out << "a,b\n1,y\n" << text << ",n\n"; });
  load("loaded as a text");
  tree::load_options options = one_thread();
  options.types["a"] = "integer";
  load("loaded as an integer", options);
  write_file([&](std::ofstream& out) { out << "a,b\n1,y\n\"" << text << "\",n\n"; });
  load("loaded from quotes");
  write_file([&](std::ofstream& out) { out << text << ",b\n1,y\n2,n\n"; });
  load("loaded as the name of a column");
}

void many_columns() {
  constexpr unsigned int columns = 100'000;
  constexpr unsigned int rows = 20;
  write_file([&](std::ofstream& out) {
    for (unsigned int c = 0; c < columns; ++c) out << 'c' << c << ',';
    out << "class\n";
    for (unsigned int r = 0; r < rows; ++r) {
      for (unsigned int c = 0; c < columns; ++c)
        out << (r * 2654435761U + c * 40503U) / 7 % (2 + c % 15) << ',';
      out << (r % 2 == 0 ? "yes\n" : "no\n");
    }
  });
  tree::table table;
  tree::decision_tree grown;
  step("20 rows loaded", [&] { table = tree::load_table(scratch(), one_thread()); });
  step("a tree grown", [&] { grown = tree::grow_tree(table, table.cases, {}); });
  step("its model saved", [&] { tree::save_model(scratch(), grown); });
  step("and loaded", [&] { tree::load_model(scratch()); });
}

void many_strings() {
  constexpr unsigned int strings = 5'000'000;
  const std::unique_ptr<o_set> domain(o_set::NEW_O_SET("string", true, "?"));
  std::vector<std::string> texts(strings);
  for (unsigned int i = 0; i < strings; ++i) texts[i] = fmt::format("value {}", i * 2654435761U);
  step("5,000,000 inserted, of 7 to 16 bytes", [&] {
    for (const std::string& text : texts) domain->insert(text.c_str());
  });
  step("put in order by the first question", [&] { domain->size_of_known(); });
  unsigned long long sum = 0;
  step("each looked up", [&] {
    unsigned int code = 0;
    for (const std::string& text : texts) sum += domain->get_order(text.c_str(), code) ? code : 0;
  });
  if (sum != strings * (strings + 1ULL) / 2) throw std::logic_error("a string was not found");
  step("saved", [&] {
    strata::inpout::file_device file(scratch(), strata::inpout::file_device::mode::write);
    strata::inpout::obinstream out(file);
    out << domain.get();
    file.close();
  });
  o_set* loaded = nullptr;
  step("reloaded", [&] {
    strata::inpout::file_device file(scratch(), strata::inpout::file_device::mode::read);
    strata::inpout::ibinstream in(file);
    in >> loaded;
  });
  delete loaded;
}

// Texts of eight bytes, none of which ends a cell: random ones, or those whose products with the
// factor of many multiplicative hashes, the golden ratio's, have the same highest bits.
std::vector<std::string> eight_bytes(bool chosen) {
  constexpr std::size_t texts = 160'000;
  constexpr std::uint64_t inverse = 0xF1DE83E19937733DU;  // of 0x9E3779B97F4A7C15 modulo 2^64
  constexpr std::uint64_t highest_bits = 0x12345ULL << 44U;
  std::mt19937_64 random(1);
  std::vector<std::string> result;
  for (std::uint64_t i = 1; result.size() < texts; ++i) {
    const std::uint64_t folded = chosen ? (highest_bits | i) * inverse : random();
    const std::uint64_t number = folded ^ folded >> 32U;
    std::string text(sizeof number, '\0');
    std::memcpy(text.data(), &number, sizeof number);
    if (text.find_first_of(std::string(",\"\r\n\0", 5)) == std::string::npos)
      result.push_back(text);
  }
  return result;
}

void chosen_texts() {
  const auto load_texts = [](bool chosen) {
    const std::vector<std::string> texts = eight_bytes(chosen);
    write_file([&](std::ofstream& out) {
      out << "text,class\n";
      for (const std::string& text : texts) out << text << (text < "P" ? ",yes\n" : ",no\n");
    });
    return seconds([] { tree::load_table(scratch(), one_thread()); });
  };
  const double random = load_texts(false);
  const double chosen = load_texts(true);
  fmt::print("  {:<52}{:>10.3f} s\n", "160,000 random texts loaded", random);
  fmt::print("  {:<52}{:>10.3f} s, {:.2f} times as long\n", "160,000 chosen texts loaded", chosen,
             chosen / random);
}

std::unique_ptr<o_set> numbers_to(unsigned int count) {
  std::unique_ptr<o_set> domain(o_set::NEW_O_SET("integer", true, "?"));
  for (unsigned int value = 1; value <= count; ++value)
    domain->insert(std::to_string(value).c_str());
  return domain;
}

void many_values_few_cases() {
  constexpr unsigned int values = 1'000'000;
  constexpr unsigned int calls = 100;
  using wide_column = impls::column_typed<unsigned int>;
  impls::column_bool classes(numbers_to(2).release(), "class", column::CLASS);
  const auto rated = [&](column::_type kind, unsigned int apart) {
    wide_column x(numbers_to(values).release(), "x", kind);
    impls::w_sequence cases;
    for (unsigned int row = 0; row < 10; ++row) {
      x.push_back(std::to_string(1 + row * apart).c_str());
      classes.push_back(row % 3 == 0 ? "1" : "2");
      cases.push_back({row, 1.0F});
    }
    strata::util::pair<unsigned int, unsigned int> range{1, 2 + 9 * apart};
    column::splitting_desc result;
    return seconds([&] {
             for (unsigned int call = 0; call < calls; ++call) {
               x.quality_measure(&classes, 10.0F, &cases, range, 1.0F, nullptr, result, true);
             }
           }) /
           calls;
  };
  for (const unsigned int apart : {1U, 100U, 10'000U, 111'000U}) {
    fmt::print("  codes {:>7} apart: {:>12.0f} ns discrete {:>10.0f} ns continuous\n", apart,
               1e9 * rated(column::DISCRETE, apart), 1e9 * rated(column::CONTINUOUS, apart));
  }
}

void append_until_full(column& x) {
  const std::vector<unsigned int> block(1U << 24U, 1U);
  unsigned int left = most_rows;
  x.reserve(left);
  while (left > 0) {
    const unsigned int count =
        std::min<unsigned int>(left, static_cast<unsigned int>(block.size()));
    x.append_codes(block.data(), count);
    left -= count;
  }
}

void most_rows_of_a_column() {
  impls::column_bool bits(numbers_to(2).release(), "bits", column::CLASS);
  impls::column_typed<unsigned char> bytes(numbers_to(9).release(), "bytes", column::DISCRETE);
  for (column* x : {static_cast<column*>(&bits), static_cast<column*>(&bytes)}) {
    step("4,294,967,295 rows of " + x->get_name() + " appended", [&] { append_until_full(*x); });
    step("a row more", [&] { x->push_back("1"); });
    const unsigned int code = 1;
    step("a code more", [&] { x->append_codes(&code, 1); });
    if (x->size() != most_rows) throw std::logic_error("the rows have changed");
  }
  impls::w_sequence cases;
  for (unsigned int i = 1; i <= 10; ++i) cases.push_back({most_rows - i, 1.0F});
  auto range = bytes.get_range();
  column::splitting_desc result;
  step("the last ten rows rated",
       [&] { bytes.quality_measure(&bits, 10.0F, &cases, range, 1.0F, nullptr, result, true); });
}

struct limit {
  const char* name;
  void (*meet)();
};

constexpr limit limits[] = {
    {"a cell of 100 MB", one_long_cell},
    {"100,000 columns", many_columns},
    {"a domain of 5,000,000 strings", many_strings},
    {"texts chosen to collide", chosen_texts},
    {"1,000,000 values at a node of ten cases", many_values_few_cases},
    {"as many rows as a column can have", most_rows_of_a_column},
};

// Returns whether the limit was met without a crash.
bool met_alone(const limit& l) {
  fmt::print("{}\n", l.name);
  if (std::fflush(stdout) != 0) throw std::runtime_error("nothing can be printed");
  const pid_t child = fork();
  if (child < 0) throw std::runtime_error("no process can be had");
  if (child == 0) {
    l.meet();
    _exit(std::fflush(stdout) == 0 ? 0 : 1);
  }
  int status = 0;
  rusage used{};
  wait4(child, &status, 0, &used);
  const auto kilobytes =
      used.ru_maxrss;  // NOLINT(cppcoreguidelines-pro-type-union-access): the C library's own
  fmt::print("  {:<52}{:>10.1f} MB\n", "most memory", static_cast<double>(kilobytes) * 1024 / 1e6);
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

}  // namespace

int main(int argc, char** argv) try {
  const std::string chosen = argc > 1 ? argv[1] : "";
  bool all_met = !scratch().empty();  // its name is that of this process
  for (const limit& l : limits) {
    if (std::string(l.name).find(chosen) != std::string::npos) all_met = met_alone(l) && all_met;
  }
  std::filesystem::remove(scratch());
  return all_met ? 0 : 1;
} catch (const std::exception& error) {
  std::cerr << error.what() << '\n';
  return 1;
}
