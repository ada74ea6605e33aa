#include "bench/people_table.h"

#include <fmt/format.h>

#include <iterator>
#include <stdexcept>

namespace arbor::bench {

people_table::people_table(const settings& of_table)
    : chosen(of_table), people(of_table.people), random(~of_table.people.seed) {}

std::string people_table::head() const {
  return std::string(chosen.weights ? "weight," : "") +
         "salary,commission,age,education level,car,zip code,house value,years owned,loan,group\n";
}

void people_table::append_row(std::string& text) {
  const auto out = std::back_inserter(text);
  const auto append_cell = [&](const char* pattern, int value) {
    if (chosen.unknown > 0 && static_cast<double>(random() >> 11U) * 0x1p-53 < chosen.unknown) {
      text += "?,";
    } else {
      fmt::format_to(out, fmt::runtime(pattern), value);
    }
  };
  const person p = people.next();
  if (chosen.weights) fmt::format_to(out, "{},", 0.5 * static_cast<double>(1 + random() % 3));
  append_cell("{},", p.salary);
  append_cell("{},", p.commission);
  append_cell("{},", p.age);
  append_cell("{},", p.education_level);
  append_cell("car{},", p.car);
  append_cell("zip{},", p.zip_code);
  append_cell("{},", p.house_value);
  append_cell("{},", p.years_owned);
  append_cell("{},", p.loan);
  text += p.group == 0 ? "A\n" : "B\n";
}

people_file::people_file(const people_table::settings& settings, std::size_t rows)
    : file(std::tmpfile(), std::fclose) {
  people_table people(settings);
  std::string text = people.head();
  for (std::size_t row = 0; row < rows; ++row) people.append_row(text);
  bytes = text.size();
  if (file == nullptr || std::fwrite(text.data(), 1, bytes, file.get()) != bytes ||
      std::fflush(file.get()) != 0) {
    throw std::runtime_error("there is no room for a file");
  }
}

}  // namespace arbor::bench
