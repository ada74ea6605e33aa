// Writes a synthetic table (see people_table.h) as CSV.
//
//   arbor_make_table --function 7 --rows 1000000 --noise 0.05 > people.csv

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <iostream>
#include <string>

#include "bench/people_table.h"

using arbor::bench::people_table;

int main(int argc, char** argv) try {
  people_table::settings settings;
  std::size_t rows = 1000000;
  CLI::App app(
      "Writes a table of people who ask for a loan, and the group that a function assigns to them, "
      "as CSV");
  app.add_option("--function", settings.people.function, "1 to 10 (default: 2)")
      ->check(CLI::Range(1, 10))
      ->type_name("N");
  app.add_option("--rows", rows, "(default: 1000000)")->type_name("N");
  app.add_option("--noise", settings.people.noise,
                 "The share of people in the wrong group (default: 0)")
      ->check(CLI::Range(0.0, 1.0))
      ->type_name("SHARE");
  app.add_option("--unknown", settings.unknown,
                 "The share of cells that are unknown, the group's aside (default: 0)")
      ->check(CLI::Range(0.0, 1.0))
      ->type_name("SHARE");
  app.add_flag("--weights", settings.weights, "A first column, weight, of 0.5, 1 and 1.5");
  app.add_option("--seed", settings.people.seed, "Which people (default: 1)")->type_name("N");
  CLI11_PARSE(app, argc, argv);

  people_table table(settings);
  std::string text = table.head();
  for (std::size_t row = 0; row < rows; ++row) {
    table.append_row(text);
    if (text.size() < 1U << 20U && row + 1 < rows) continue;
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size()) return 2;
    text.clear();
  }
  return std::fflush(stdout) == 0 ? 0 : 2;
} catch (const std::exception& error) {
  std::cerr << error.what() << '\n';
  return 2;
}
