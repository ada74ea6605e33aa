// What the fuzz targets share: checks, files in memory, and records.
//
//   extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
//     const std::string text(data, data + size);
//     arbor::fuzz::check_same(upper(upper(text)), upper(text), "a text in upper case again");
//     return 0;
//   }
#ifndef ARBOR_TESTS_FUZZ_FUZZ_H
#define ARBOR_TESTS_FUZZ_FUZZ_H

#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "tests/support/columns.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size);

namespace arbor::fuzz {

using tests::column, tests::message_of, tests::o_set, tests::record_of;

// Aborts unless a rule holds: that is how a fuzzer notices a fault.
inline void check(bool holds, const std::string& rule) {
  if (holds) return;
  std::fprintf(stderr, "fault: it does not hold that %s\n", rule.c_str());
  std::abort();
}
inline void check_same(const std::string& actual, const std::string& expected,
                       const std::string& what) {
  check(actual == expected, what + " is " + expected + ", but it is " + actual);
}

inline void check_one_line(const std::string& message) {
  check(message.find_first_of("\r\n") == std::string::npos, "a message is one line");
}

// A file in memory, with a path.
struct memory_file {
  explicit memory_file(const std::string& contents) {
    check(write(descriptor, contents.data(), contents.size()) >= 0, "there is memory for a file");
  }
  ~memory_file() { close(descriptor); }
  std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor); }

  const int descriptor = memfd_create("fuzz", 0);
};

// A frozen domain never releases its values, which would fill the memory of a fuzzer. An insertion
// makes it release them.
inline void thaw(o_set* domain) {
  message_of([&] { domain->insert(domain->get_null()); });
}
template <class Columns>
void thaw_all(const Columns& columns) {
  for (const auto& x : columns) thaw(x->get_o_set());
}
struct thawing_delete {
  void operator()(o_set* domain) const { thaw(domain), delete domain; }
  void operator()(column* column) const { thaw(column->get_o_set()), delete column; }
};
template <class T>
using owner = std::unique_ptr<T, thawing_delete>;

// Null if the record is refused.
template <class Record>
owner<Record> accepted_record(const std::string& bytes) {
  owner<Record> result;
  message_of([&] { result.reset(tests::read_record<Record>(bytes).release()); });
  return result;
}

template <class Record>
void check_record(Record* source) {
  const std::string bytes = record_of(source);
  const auto again = accepted_record<Record>(bytes);
  check(again != nullptr && record_of(again.get()) == bytes,
        "a record is read back to the same bytes");
}

}  // namespace arbor::fuzz

#endif
