#include "tools/rate_command.h"

#include <iostream>

#include "arbor/csv/message_text.h"
#include "arbor/report/rating_report.h"

namespace arbor::tools {

namespace {

constexpr const char* rate_help =
    R"(The table is a CSV file whose first row names the columns. A column holds integers,
else floats, else strings, whichever its values all fit. Attributes of numbers are
continuous: a split has two branches, at the best threshold. Attributes of strings are
discrete: a split has one branch for each value.

Gain is the information gain in bits, scaled by the share of known values; the gain ratio
divides it by the split information. A threshold has paid for being the best of many.

Examples:
  arbor rate golf.csv
  arbor rate golf.csv --class play --sort gain
  arbor rate survey.csv --unknown NA --unknown '' --kind zip=discrete --weights count
  gunzip -c big.csv.gz | arbor rate - --format json

Exit status: 0, or 2 with one line on standard error that says what is wrong.)";

tree::rating_order order_named(const std::string& name) {
  if (name == "name") return tree::rating_order::name;
  return name == "gain" ? tree::rating_order::gain : tree::rating_order::ratio;
}

}  // namespace

rate_command::rate_command(CLI::App& app)
    : command(app, "rate", "Tell how good a split each attribute of a table would make",
              rate_help) {
  parser.add_option("TABLE", table_path, "A CSV file, or - for standard input")->type_name("");
  table.add_to(parser);
  parser
      .add_option("--min-weight", min_weight,
                  "The least weight of two values, or of a threshold's sides (default: 2)")
      ->type_name("W");
  parser.add_option("--format", format, "text, csv or json (default: text)")->type_name("FORMAT");
  parser.add_option("--sort", sort, "By ratio, gain or name (default: ratio)")->type_name("ORDER");
}

void rate_command::run() {
  tree::check_choice("--format: ", format, {"text", "csv", "json"});
  tree::check_choice("--sort: ", sort, {"ratio", "gain", "name"});
  const tree::load_options options = table.chosen();
  const float least_weight = weight_value("--min-weight", min_weight);
  const tree::table rated = read_table(table_path, options);
  std::vector<tree::attribute_rating> ratings =
      tree::rate_attributes(rated, rated.cases, least_weight);
  tree::sort_ratings(ratings, order_named(sort));
  print_ratings(rated, rated.cases, ratings, format);
}

void print_ratings(const tree::table& rated, const impls::w_sequence& cases,
                   const std::vector<tree::attribute_rating>& ratings, const std::string& format) {
  if (format == "json") {
    std::cout << tree::ratings_as_json(rated, cases, ratings);
  } else if (format == "csv") {
    std::cerr << tree::table_line(rated, cases) << '\n';
    std::cout << tree::ratings_as_csv(cases, ratings);
  } else {
    std::cout << tree::table_line(rated, cases) << "\n\n" << tree::ratings_as_text(cases, ratings);
  }
}

}  // namespace arbor::tools
