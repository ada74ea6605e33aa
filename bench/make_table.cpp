// Writes a synthetic table (see agrawal.h) as CSV.
//
//   arbor_make_table --function 7 --rows 1000000 --noise 0.05 > people.csv

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <iostream>
#include <iterator>
#include <string>

#include "bench/agrawal.h"

using arbor::bench::agrawal;
using arbor::bench::person;

int main(int argc, char** argv) try {
  agrawal::settings settings{2, 0, 1};
  std::size_t rows = 1000000;
  CLI::App app(
      "Writes a table of people who ask for a loan, and the group that a function assigns to them, "
      "as CSV");
  app.add_option("--function", settings.function, "1 to 10 (default: 2)")
      ->check(CLI::Range(1, 10))
      ->type_name("N");
  app.add_option("--rows", rows, "(default: 1000000)")->type_name("N");
  app.add_option("--noise", settings.noise, "The share of people in the wrong group (default: 0)")
      ->check(CLI::Range(0.0, 1.0))
      ->type_name("SHARE");
  app.add_option("--seed", settings.seed, "Which people (default: 1)")->type_name("N");
  CLI11_PARSE(app, argc, argv);

  std::string text =
      "salary,commission,age,education level,car,zip code,house value,years owned,loan,group\n";
  const auto out = std::back_inserter(text);
  agrawal people(settings);
  for (std::size_t row = 0; row < rows; ++row) {
    const person p = people.next();
    fmt::format_to(out, "{},{},{},{},car{},zip{},{},{},{},{}\n", p.salary, p.commission, p.age,
                   p.education_level, p.car, p.zip_code, p.house_value, p.years_owned, p.loan,
                   p.group == 0 ? 'A' : 'B');
    if (text.size() < 1U << 20U && row + 1 < rows) continue;
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size()) return 2;
    text.clear();
  }
  return std::fflush(stdout) == 0 ? 0 : 2;
} catch (const std::exception& error) {
  std::cerr << error.what() << '\n';
  return 2;
}
