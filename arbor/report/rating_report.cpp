#include "arbor/report/rating_report.h"

#include <fmt/format.h>

#include <algorithm>

#include "arbor/csv/csv_cell.h"
#include "arbor/csv/message_text.h"
#include "arbor/report/json_writer.h"
#include "arbor/report/text_table.h"
#include "arbor/table/value_text.h"

namespace arbor::tree {

namespace {

std::size_t attribute_count(const table& described) {
  const auto attribute = [](const auto& column) { return is_attribute(*column); };
  return static_cast<std::size_t>(
      std::count_if(described.columns.begin(), described.columns.end(), attribute));
}

std::size_t unknown_attribute_cells(const table& described, const impls::w_sequence& cases) {
  std::size_t count = 0;
  for (const auto& column : described.columns) {
    if (is_attribute(*column)) count += unknown_cells(*column, cases);
  }
  return count;
}

struct class_weight {
  std::string value;
  float weight = 0;
};

// In the order of their codes.
std::vector<class_weight> named_class_weights(const table& described,
                                              const impls::w_sequence& cases) {
  std::vector<class_weight> result;
  for (const float weight : class_weights(described.class_column(), cases)) {
    const auto code = static_cast<unsigned int>(result.size()) + 1;
    result.push_back({value_text(described.class_column(), code), weight});
  }
  return result;
}

double unknown_share(const impls::w_sequence& cases, const attribute_rating& rating) {
  return static_cast<double>(rating.unknown_cells) / static_cast<double>(cases.size());
}

// A value in a list, in quotes if it would not be told apart without.
std::string listed(const std::string& value) {
  const bool plain = !value.empty() && value.find_first_of(" ,\"\n\r\t") == std::string::npos;
  return plain ? printable(value) : in_quotes(value);
}

std::string split_as_text(const attribute_rating& rating) {
  if (!rating.split) return "no split: " + rating.no_split_reason;
  if (rating.split->threshold) return "<= " + *rating.split->threshold;
  return fmt::format("{} branches", rating.split->branches);
}

}  // namespace

std::string table_line(const table& described, const impls::w_sequence& cases) {
  constexpr std::size_t most_classes = 20;
  std::vector<class_weight> classes = named_class_weights(described, cases);
  const std::size_t left_out = classes.size() > most_classes ? classes.size() - most_classes : 0;
  if (left_out > 0) {
    const auto heavier = [](const class_weight& a, const class_weight& b) {
      return a.weight > b.weight;
    };
    std::stable_sort(classes.begin(), classes.end(), heavier);
    classes.resize(most_classes);
  }
  std::string line =
      fmt::format("{}: {}, {}, {}; class {}:", described.name, counted(cases.size(), "row"),
                  counted(attribute_count(described), "attribute"),
                  counted(unknown_attribute_cells(described, cases), "unknown cell"),
                  in_quotes(described.class_column().get_name()));
  for (std::size_t i = 0; i < classes.size(); ++i) {
    line += fmt::format("{} {} {}", i == 0 ? "" : ",", listed(classes[i].value),
                        shortest_text(classes[i].weight));
  }
  if (left_out > 0) line += fmt::format(", and {} lighter ones", left_out);
  return line;
}

std::string ratings_as_text(const impls::w_sequence& cases,
                            const std::vector<attribute_rating>& ratings) {
  std::vector<std::vector<std::string>> rows{{"attribute", "kind", "type", "values", "unknown",
                                              "gain", "split info", "gain ratio", "split"}};
  for (const attribute_rating& rating : ratings) {
    const auto number = [&](float split_rating::*member) {
      return rating.split ? fmt::format("{:.6f}", (*rating.split).*member) : "-";
    };
    rows.push_back({printable(rating.name), rating.kind, rating.data_type,
                    std::to_string(rating.values),
                    fmt::format("{:.1f}%", 100 * unknown_share(cases, rating)),
                    number(&split_rating::gain), number(&split_rating::split_info),
                    number(&split_rating::gain_ratio), split_as_text(rating)});
  }
  return aligned(rows, "lllrrrrrl");
}

std::string ratings_as_csv(const impls::w_sequence& cases,
                           const std::vector<attribute_rating>& ratings) {
  std::string report =
      "attribute,kind,type,values,unknown,gain,split_info,gain_ratio,branches,threshold,no_split\n";
  for (const attribute_rating& rating : ratings) {
    report +=
        fmt::format("{},{},{},{},{},", csv_cell(rating.name), rating.kind, rating.data_type,
                    rating.values, shortest_text(static_cast<float>(unknown_share(cases, rating))));
    if (rating.split) {
      const split_rating& split = *rating.split;
      report += fmt::format("{},{},{},{},{},\n", shortest_text(split.gain),
                            shortest_text(split.split_info), shortest_text(split.gain_ratio),
                            split.branches, split.threshold.value_or(""));
    } else {
      report += fmt::format(",,,,,{}\n", csv_cell(rating.no_split_reason));
    }
  }
  return report;
}

std::string ratings_as_json(const table& rated, const impls::w_sequence& cases,
                            const std::vector<attribute_rating>& ratings) {
  json_writer json;
  json.open('{').key("table").open('{');
  json.member("name", rated.name);
  json.member("rows", cases.size());
  json.member("attributes", attribute_count(rated));
  json.member("unknown_cells", unknown_attribute_cells(rated, cases));
  json.member("weight", total_weight(cases));
  json.member("class", rated.class_column().get_name());
  json.key("classes").open('[');
  for (const auto& [value, weight] : named_class_weights(rated, cases)) {
    json.open('{').member("value", value).member("weight", weight).close();
  }
  json.close().close().key("ratings").open('[');
  for (const attribute_rating& rating : ratings) {
    json.open('{');
    json.member("attribute", rating.name);
    json.member("kind", rating.kind);
    json.member("type", rating.data_type);
    json.member("values", rating.values);
    json.member("unknown", static_cast<float>(unknown_share(cases, rating)));
    const auto member_or_null = [&json](const char* name, bool is_there, const auto& value) {
      json.key(name);
      is_there ? json.value(value) : json.value(nullptr);
    };
    const bool splits = rating.split.has_value();
    const auto& split = splits ? *rating.split : split_rating();
    member_or_null("gain", splits, split.gain);
    member_or_null("split_info", splits, split.split_info);
    member_or_null("gain_ratio", splits, split.gain_ratio);
    member_or_null("branches", splits, split.branches);
    member_or_null("threshold", split.threshold.has_value(), split.threshold.value_or(""));
    member_or_null("no_split", !splits, rating.no_split_reason);
    json.close();
  }
  return json.close().close().text();
}

}  // namespace arbor::tree
