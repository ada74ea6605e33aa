#include "tools/rate_command.h"

#include <iostream>

#include "arbor/tree/message_text.h"
#include "arbor/tree/rating_report.h"
#include "arbor/tree/table_loader.h"
#include "tools/command_line.h"

namespace arbor::tools {

namespace {

constexpr const char* examples = R"(The table is a CSV file whose first row names the columns. A column holds integers,
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
    : command(app.add_subcommand("rate", "Tell how good a split each attribute of a table would make")) {
  command->add_option("TABLE", table_path, "A CSV file, or - for standard input")->type_name("");
  command->add_option("--class", class_name, "The column to predict (default: the last one)")->type_name("NAME");
  command
      ->add_option("--weights", weights_name, "The column of weights; 0 leaves a row out (default: all rows weigh 1)")
      ->type_name("NAME");
  command
      ->add_option("--min-weight", min_weight, "The least weight of two values, or of a threshold's sides (default: 2)")
      ->type_name("W");
  command
      ->add_option("--unknown", unknown_texts,
                   "What means unknown, '' the empty cell, '\"\"' one in quotes; repeatable (default: ? and '')")
      ->type_name("TEXT")
      ->take_all()
      ->allow_extra_args(false);
  command->add_option("--type", types, "A column's data type: integer, uinteger, float, double or string; repeatable")
      ->type_name("NAME=TYPE")
      ->take_all()
      ->allow_extra_args(false);
  command->add_option("--kind", kinds, "An attribute's kind: discrete, continuous or ignore; repeatable")
      ->type_name("NAME=KIND")
      ->take_all()
      ->allow_extra_args(false);
  command->add_option("--format", format, "text, csv or json (default: text)")->type_name("FORMAT");
  command->add_option("--sort", sort, "By ratio, gain or name (default: ratio)")->type_name("ORDER");
  command->footer(examples);
}

void rate_command::run() const {
  for (const char* named : {"--class", "--weights"}) {
    if (command->count(named) > 0 && command->get_option(named)->as<std::string>().empty()) {
      throw usage_error(std::string(named) + ": the name of the column is empty");
    }
  }
  if (table_path.empty()) throw usage_error("no table to rate; name a CSV file, or - for standard input");
  tree::check_choice("--format: ", format, {"text", "csv", "json"});
  tree::check_choice("--sort: ", sort, {"ratio", "gain", "name"});
  tree::load_options options;
  options.class_name = class_name;
  options.weights_name = weights_name;
  options.unknown_texts = unknown_texts;
  options.types = name_values("--type", types);
  options.kinds = name_values("--kind", kinds);
  const float least_weight = weight_value("--min-weight", min_weight);

  const tree::table rated = tree::load_table(table_path, options);
  for (const std::string& remark : rated.remarks) std::cerr << "arbor: " << rated.name << ": " << remark << '\n';
  std::vector<tree::attribute_rating> ratings = tree::rate_attributes(rated, rated.cases, least_weight);
  tree::sort_ratings(ratings, order_named(sort));

  if (format == "json") {
    std::cout << tree::ratings_as_json(rated, ratings);
  } else if (format == "csv") {
    std::cerr << tree::table_line(rated) << '\n';
    std::cout << tree::ratings_as_csv(rated, ratings);
  } else {
    std::cout << tree::table_line(rated) << "\n\n" << tree::ratings_as_text(rated, ratings);
  }
}

}  // namespace arbor::tools
