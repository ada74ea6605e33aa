// What the fuzz targets share: values off the input, checks, files in memory, and records.
//
//   extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
//     arbor::fuzz::input in{data, size};
//     const unsigned int rows = in.below(20);
//     arbor::fuzz::check(rows < 20, "a number is below its bound");
//     return 0;
//   }
#ifndef ARBOR_TESTS_FUZZ_FUZZ_H
#define ARBOR_TESTS_FUZZ_FUZZ_H

#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "arbor/model/column.h"
#include "arbor/utils/memory_device.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size);

namespace arbor::fuzz {

using byte_list = std::vector<unsigned char>;

// Aborts unless a rule holds, which is how a fuzzer takes note of an input.
inline void check(bool holds, const std::string& rule) {
  if (holds) return;
  std::fprintf(stderr, "fault: not so that %s\n", rule.c_str());
  std::abort();
}
inline void check_same(const std::string& actual, const std::string& expected,
                       const std::string& what) {
  check(actual == expected, what + " is " + expected + ", but it is " + actual);
}

// What a call is refused with by an Error and nothing else; empty when it is not.
template <class Error = std::runtime_error, class Call>
std::string refusal(Call call) {
  try {
    call();
    return "";
  } catch (const Error& error) {
    return std::string("refused: ") + error.what();
  }
}

// Values off the front of the input; zeros when that is used up.
struct input {
  bool empty() const { return size == 0; }
  unsigned int byte() { return empty() ? 0 : (--size, *data++); }
  // From 0 to `bound` - 1, of at most two bytes.
  unsigned int below(unsigned int bound) {
    return (bound <= 256 ? byte() : byte() + 256 * byte()) % bound;
  }
  // The next bytes up to a zero byte, or to the end.
  std::string text() {
    std::string result;
    while (const unsigned int c = byte()) result += static_cast<char>(c);
    return result;
  }
  std::string rest() const { return {data, data + size}; }

  const unsigned char* data;
  std::size_t size;
};

// A file in memory, with a path.
struct memory_file {
  explicit memory_file(const std::string& contents) {
    check(write(descriptor, contents.data(), contents.size()) >= 0, "there is memory for a file");
  }
  ~memory_file() { close(descriptor); }
  std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor); }

  const int descriptor = memfd_create("fuzz", 0);
};

// A frozen domain keeps its values for ever, and a fuzzer has not room for that: an insertion makes
// it let go of them.
inline void thaw(impls::o_set* domain) {
  refusal([&] { domain->insert(domain->get_null()); });
}
struct thawing_delete {
  void operator()(impls::o_set* domain) const { thaw(domain), delete domain; }
  void operator()(impls::column* column) const { thaw(column->get_o_set()), delete column; }
};
template <class T>
using owner = std::unique_ptr<T, thawing_delete>;

template <class Record>
byte_list record_of(const Record& source) {
  strata::inpout::memory_device device;
  strata::inpout::obinstream out(device);
  out << source;
  return device.bytes();
}

// The record at the front of `bytes`; null, as its target has to be, if it is refused or tells of
// nothing.
template <class Record>
owner<Record> record_in(const byte_list& bytes) {
  strata::inpout::memory_device device(bytes);
  strata::inpout::ibinstream in(device);
  auto* target = reinterpret_cast<Record*>(&device);
  if (!refusal([&] { in >> target; }).empty())
    check(target == nullptr, "a refused record leaves its target null");
  return owner<Record>(target);
}

template <class Record>
void check_record(Record* source) {
  const byte_list bytes = record_of(source);
  const auto again = record_in<Record>(bytes);
  check(again != nullptr && record_of(again.get()) == bytes,
        "a record is read back to the same bytes");
}

}  // namespace arbor::fuzz

#endif
