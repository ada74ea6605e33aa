#include "bench/people_table.h"

#include <fmt/format.h>

#include <iterator>

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

}  // namespace arbor::bench
