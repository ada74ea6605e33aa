// Bytes for tests of what is made of them: without a file, and all at once.
#ifndef ARBOR_TESTS_SUPPORT_BYTE_SOURCES_H
#define ARBOR_TESTS_SUPPORT_BYTE_SOURCES_H

#include <algorithm>
#include <memory>
#include <string>
#include <utility>

#include "arbor/csv/byte_source.h"

namespace arbor::tests {

class text_source : public tree::byte_source {
 public:
  explicit text_source(std::string contents) : text(std::move(contents)) {}

  std::size_t read(char* buffer, std::size_t size) override {
    const std::size_t count = text.copy(buffer, size, given);
    given += count;
    return count;
  }
  unsigned long long bytes_of_file() const override { return given; }
  const std::string& name() const override { return source_name; }

 private:
  const std::string text;
  const std::string source_name = "text";
  std::size_t given = 0;
};

inline std::unique_ptr<text_source> source_of(const std::string& text) {
  return std::make_unique<text_source>(text);
}

// All bytes of a source, which are read `step` at a time.
inline std::string all_of(tree::byte_source& source, std::size_t step = 4096) {
  std::string all, part(step, '\0');
  for (std::size_t count = step; count == step; all.append(part, 0, count))
    count = source.read(part.data(), step);
  return all;
}

}  // namespace arbor::tests

#endif
