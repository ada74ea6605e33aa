#include "tools/rate_command.h"

#include "arbor/tree/rating.h"
#include "tools/offered_values.h"
#include "tools/output_file.h"
#include "tools/print_ratings.h"
#include "tools/thread_option.h"

namespace arbor::tools {

namespace {

constexpr const char* rate_help =
    R"(The table is a CSV file whose first row names the columns, an ARFF file, or
NAME.data beside NAME.names. The data type of a column is integer, uinteger,
decimal, float or string: the first that fits all its values; all but float are
exact. Attributes of numbers are continuous: their split has two branches, at
the best threshold. Attributes of strings are discrete: their split has a branch
for each value.

The gain is the information gain in bits, scaled by the share of known values.
The gain of a threshold is reduced by a penalty, since it is the best of many.
The gain ratio is the gain divided by the split information. The judged gain is
the gain, less what so many values are likely to gain by chance; a tree tests
the attribute with the best gain ratio of those whose judged gain is at least
the average of the judged gains above 0.

Examples:
  arbor rate golf.csv
  arbor rate golf.csv --class play --sort gain
  arbor rate survey.csv --unknown NA --unknown '' --weights count
  arbor rate part-*.csv.gz --kind zip=discrete --format json
  arbor rate export.csv --decimal , --strip % --save-types export.types)";

tree::rating_order order_named(const std::string& name) {
  if (name == "name") return tree::rating_order::name;
  return name == "gain" ? tree::rating_order::gain : tree::rating_order::ratio;
}

}  // namespace

rate_command::rate_command(CLI::App& app, const workplace& at)
    : command(app, "rate", "Rate the split that each attribute would make", rate_help), place(at) {
  add_tables(parser, table_paths);
  table.add_to(parser);
  parser
      .add_option("--min-weight", min_weight,
                  "Minimum weight of both sides of a threshold, or of two branches of a discrete "
                  "split (default: 2)")
      ->type_name("W");
  offer(parser.add_option("--format", format, "text, csv or json (default: text)"),
        {"text", "csv", "json"})
      ->type_name("FORMAT");
  offer(parser.add_option("--sort", sort,
                          "Order of the attributes: by ratio, gain or name (default: ratio)"),
        {"ratio", "gain", "name"})
      ->type_name("ORDER");
  add_threads(parser, threads);
  add_force(parser, "--save-types", force);
}

void rate_command::run() {
  tree::load_options load;
  place.in_all([&] {
    check_offered(parser, "--format");
    check_offered(parser, "--sort");
    load = table.chosen();
  });
  load.threads = thread_count(threads);
  const float least_weight = weight_value("--min-weight", min_weight);
  check_tables(table_paths);
  place.in_first([&] { table.check_saving(table_paths, force); });
  const tree::table rated = read_table(place, table_paths, load);
  place.in_first([&] { table.save_types(rated, force); });
  tree::table_rating ratings = place.rate(rated, rated.cases, least_weight);
  tree::sort_ratings(ratings.attributes, order_named(sort));
  print_ratings(rated, place.summary(rated, rated.cases), ratings, format);
}

}  // namespace arbor::tools
