// A device that shows what streams do to it, and bytes spelt out.
#ifndef ARBOR_TESTS_SUPPORT_DEVICES_H
#define ARBOR_TESTS_SUPPORT_DEVICES_H

#include "arbor/utils/memory_device.h"
#include "tests/support/columns.h"

namespace arbor::tests {

using byte_list = std::vector<unsigned char>;
using call_sizes = std::vector<unsigned int>;

// The bytes of words of hexadecimal digits, and of 'words that stand for the record of a text: 'ab
// is 01 02000000 6162.
inline byte_list spelt(const std::string& spelling) {
  std::istringstream in(spelling);
  std::string bytes;
  for (std::string word; in >> word;) {
    if (word[0] == '\'')
      bytes += std::string{1, static_cast<char>(word.size() - 1), 0, 0, 0} + word.substr(1);
    for (std::size_t i = 0; word[0] != '\'' && i < word.size(); i += 2)
      bytes += static_cast<char>(std::stoi(word.substr(i, 2), nullptr, 16));
  }
  return {bytes.begin(), bytes.end()};
}

// A device in memory, with its streams, that keeps the size of every call and may not know how much
// it holds.
struct call_log : strata::inpout::bindevice {
  explicit call_log(const byte_list& initial = {}, bool knows = true)
      : medium(initial), knows_size(knows) {}
  void write(const void* data, unsigned int count) override {
    calls.push_back(count), medium.write(data, count);
  }
  void read(void* data, unsigned int count) override {
    calls.push_back(count), medium.read(data, count);
  }
  unsigned long long remaining() const override {
    return knows_size ? medium.remaining() : bindevice::remaining();
  }

  strata::inpout::memory_device medium;
  strata::inpout::obinstream out{*this};
  strata::inpout::ibinstream in{*this};
  bool knows_size;
  call_sizes calls;
};

}  // namespace arbor::tests

#endif
