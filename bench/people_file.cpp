#include "bench/people_file.h"

#include "bench/comparison.h"

namespace arbor::bench {

people_file::people_file(const people_table::settings& settings, std::size_t rows)
    : file(std::tmpfile(), std::fclose) {
  people_table people(settings);
  std::string text = people.head();
  for (std::size_t row = 0; row < rows; ++row) people.append_row(text);
  expect(file != nullptr, "there is room for a file");
  expect(std::fwrite(text.data(), 1, text.size(), file.get()) == text.size(), "it is written");
  expect(std::fflush(file.get()) == 0, "it is written");
}

}  // namespace arbor::bench
