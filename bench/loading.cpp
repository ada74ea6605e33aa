// Loading a table, compared with a scan by hand that divides the same bytes at each comma, reads
// the numbers, and looks the texts up in a table of hashes; and on two threads, compared with one.

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "arbor/table/table_loader.h"
#include "bench/benches.h"
#include "bench/comparison.h"
#include "bench/people_table.h"

namespace arbor::bench {

namespace {

constexpr std::size_t rows = 300000;
constexpr std::size_t columns = 10;

std::function<void()> loading(const std::shared_ptr<const people_file>& file,
                              unsigned int threads) {
  tree::load_options options;
  options.threads = threads;
  return [=] {
    expect(tree::load_table(file->path(), options).cases.size() == rows, "every row is a case");
  };
}

// The codes of a column of few short texts, by their hash alone.
class bare_dictionary {
 public:
  unsigned int code_of(const char* text, std::size_t length) {
    std::uint64_t hash = length;
    for (std::size_t i = 0; i < length; ++i)
      hash = (hash ^ static_cast<unsigned char>(text[i])) * 0x100000001B3U;
    slot* s = &slots[hash % slots.size()];
    while (s->code != 0 && s->hash != hash) s = s == &slots.back() ? slots.data() : s + 1;
    if (s->code == 0) *s = {hash, ++last};
    return s->code;
  }

 private:
  struct slot {
    std::uint64_t hash;
    unsigned int code;
  };
  std::array<slot, 64> slots{};
  unsigned int last = 0;
};

void bare_scan(const people_file& file) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> in(std::fopen(file.path().c_str(), "rb"),
                                                           std::fclose);
  expect(in != nullptr, "the file is opened");
  std::vector<char> text(file.size());
  expect(std::fread(text.data(), 1, text.size(), in.get()) == text.size(), "the file is read");
  std::array<std::vector<unsigned int>, columns> codes;
  std::array<bare_dictionary, columns> texts;
  const char* const end = text.data() + text.size();
  const char* cell = static_cast<const char*>(std::memchr(text.data(), '\n', text.size())) + 1;
  for (std::size_t column = 0; cell < end; column = (column + 1) % columns) {
    const char* c = cell;
    unsigned int code = 0;
    for (; *c >= '0' && *c <= '9'; ++c) code = 10 * code + static_cast<unsigned int>(*c - '0');
    if (c == cell) {
      while (*c != ',' && *c != '\n') ++c;
      code = texts[column].code_of(cell, static_cast<std::size_t>(c - cell));
    }
    codes[column].push_back(code);
    cell = c + 1;
  }
  expect(codes[columns - 1].size() == rows, "every row is scanned");
}

}  // namespace

void add_loading() {
  const std::string people = "/" + with_thousands(rows) + " people";
  const auto make = [] {
    return std::make_shared<const people_file>(people_table::settings{{7, 0, 1}, 0, false}, rows);
  };
  compare("loading a table : scanning" + people, {aim::ratio, 1.7}, [=] {
    const auto file = make();
    return comparison{rows * columns, loading(file, 1), [=] { bare_scan(*file); }};
  });
  compare("loading a table, two threads : one, by the clock" + people, {aim::ratio, 0.588}, [=] {
    const auto file = make();
    comparison threads{rows * columns, loading(file, 2), loading(file, 1)};
    threads.by_clock = true;
    return threads;
  });
}

}  // namespace arbor::bench
