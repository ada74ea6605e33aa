#include "arbor/tree/rating_report.h"

#include <csv.h>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>

#include "arbor/tree/message_text.h"
#include "arbor/tree/shortest_text.h"

namespace arbor::tree {

namespace {

// JSON with members in the order of their insertion and floats in their shortest form.
using json =
    nlohmann::basic_json<nlohmann::ordered_map, std::vector, std::string, bool, std::int64_t, std::uint64_t, float>;

std::size_t attribute_count(const table& described) {
  const auto attribute = [](const auto& column) { return is_attribute(*column); };
  return static_cast<std::size_t>(std::count_if(described.columns.begin(), described.columns.end(), attribute));
}

std::size_t unknown_attribute_cells(const table& described) {
  std::size_t count = 0;
  for (const auto& column : described.columns) {
    if (is_attribute(*column)) count += unknown_cells(*column, described.cases.size());
  }
  return count;
}

struct class_weight {
  std::string value;
  float weight;
};

// In the order of their codes. Summed in double, so that no case is lost among many.
std::vector<class_weight> class_weights(const table& described) {
  const impls::column& classes = described.class_column();
  std::vector<double> sums(classes.get_distinct(), 0.0);
  for (const auto& [row, weight] : described.cases) sums[classes.get_row_index(row)] += static_cast<double>(weight);
  std::vector<class_weight> result;
  for (unsigned int code = 1; code < sums.size(); ++code) {
    result.push_back({value_text(classes, code), static_cast<float>(sums[code])});
  }
  return result;
}

double unknown_share(const table& rated, const attribute_rating& rating) {
  return static_cast<double>(rating.unknown_cells) / static_cast<double>(rated.cases.size());
}

std::string plural(std::size_t count, const std::string& thing) {
  return fmt::format("{} {}{}", count, thing, count == 1 ? "" : "s");
}

std::string split_as_text(const attribute_rating& rating) {
  if (!rating.split) return "no split: " + rating.no_split_reason;
  if (rating.split->threshold) return "<= " + *rating.split->threshold;
  return fmt::format("{} branches", rating.split->branches);
}

using report_row = std::array<std::string, 9>;

// Characters, as far as UTF-8 tells them.
std::size_t display_width(const std::string& text) {
  const auto begins_character = [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80; };
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), begins_character));
}

// The rows with their columns under each other: texts flush left, from the fourth column on numbers flush right, and
// the last column as it is.
std::string aligned(const std::vector<report_row>& rows) {
  std::array<std::size_t, std::tuple_size_v<report_row>> widths{};
  for (const report_row& row : rows) {
    for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], display_width(row[i]));
  }
  std::string report;
  for (const report_row& row : rows) {
    for (std::size_t i = 0; i + 1 < row.size(); ++i) {
      const std::string padding(widths[i] - display_width(row[i]), ' ');
      report += i < 3 ? row[i] + padding : padding + row[i];
      report += "  ";
    }
    report += row.back() + '\n';
  }
  return report;
}

std::string csv_cell(const std::string& text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string cell(2 * text.size() + 2, '\0');
  cell.resize(csv_write(cell.data(), cell.size(), text.data(), text.size()));
  return cell;
}

}  // namespace

std::string table_line(const table& described) {
  constexpr std::size_t most_classes = 20;
  std::vector<class_weight> classes = class_weights(described);
  const std::size_t left_out = classes.size() > most_classes ? classes.size() - most_classes : 0;
  if (left_out > 0) {
    const auto heavier = [](const class_weight& a, const class_weight& b) { return a.weight > b.weight; };
    std::stable_sort(classes.begin(), classes.end(), heavier);
    classes.resize(most_classes);
  }
  std::string line = fmt::format("{}: {}, {}, {}; class {}:", described.name, plural(described.cases.size(), "row"),
                                 plural(attribute_count(described), "attribute"),
                                 plural(unknown_attribute_cells(described), "unknown cell"),
                                 in_quotes(described.class_column().get_name()));
  for (std::size_t i = 0; i < classes.size(); ++i) {
    line += fmt::format("{} {} {}", i == 0 ? "" : ",", printable(classes[i].value), shortest_text(classes[i].weight));
  }
  if (left_out > 0) line += fmt::format(", and {} lighter ones", left_out);
  return line;
}

std::string ratings_as_text(const table& rated, const std::vector<attribute_rating>& ratings) {
  std::vector<report_row> rows{
      {"attribute", "kind", "type", "values", "unknown", "gain", "split info", "gain ratio", "split"}};
  for (const attribute_rating& rating : ratings) {
    const auto number = [&](float split_rating::*member) {
      return rating.split ? fmt::format("{:.6f}", (*rating.split).*member) : "-";
    };
    rows.push_back({printable(rating.name), rating.kind, rating.data_type, std::to_string(rating.values),
                    fmt::format("{:.1f}%", 100 * unknown_share(rated, rating)), number(&split_rating::gain),
                    number(&split_rating::split_info), number(&split_rating::gain_ratio), split_as_text(rating)});
  }
  return aligned(rows);
}

std::string ratings_as_csv(const table& rated, const std::vector<attribute_rating>& ratings) {
  std::string report = "attribute,kind,type,values,unknown,gain,split_info,gain_ratio,branches,threshold,no_split\n";
  for (const attribute_rating& rating : ratings) {
    report += fmt::format("{},{},{},{},{},", csv_cell(rating.name), rating.kind, rating.data_type, rating.values,
                          shortest_text(static_cast<float>(unknown_share(rated, rating))));
    if (rating.split) {
      const split_rating& split = *rating.split;
      report += fmt::format("{},{},{},{},{},\n", shortest_text(split.gain), shortest_text(split.split_info),
                            shortest_text(split.gain_ratio), split.branches, split.threshold.value_or(""));
    } else {
      report += fmt::format(",,,,,{}\n", csv_cell(rating.no_split_reason));
    }
  }
  return report;
}

std::string ratings_as_json(const table& rated, const std::vector<attribute_rating>& ratings) {
  json classes = json::array();
  for (const auto& [value, weight] : class_weights(rated)) classes.push_back({{"value", value}, {"weight", weight}});
  json report;
  report["table"] = {{"name", rated.name},
                     {"rows", rated.cases.size()},
                     {"attributes", attribute_count(rated)},
                     {"unknown_cells", unknown_attribute_cells(rated)},
                     {"weight", rated.total_weight},
                     {"class", rated.class_column().get_name()},
                     {"classes", classes}};
  report["ratings"] = json::array();
  for (const attribute_rating& rating : ratings) {
    json entry = {{"attribute", rating.name},
                  {"kind", rating.kind},
                  {"type", rating.data_type},
                  {"values", rating.values},
                  {"unknown", static_cast<float>(unknown_share(rated, rating))},
                  {"gain", nullptr},
                  {"split_info", nullptr},
                  {"gain_ratio", nullptr},
                  {"branches", nullptr},
                  {"threshold", nullptr},
                  {"no_split", nullptr}};
    if (rating.split) {
      entry["gain"] = rating.split->gain;
      entry["split_info"] = rating.split->split_info;
      entry["gain_ratio"] = rating.split->gain_ratio;
      entry["branches"] = rating.split->branches;
      if (rating.split->threshold) entry["threshold"] = *rating.split->threshold;
    } else {
      entry["no_split"] = rating.no_split_reason;
    }
    report["ratings"].push_back(entry);
  }
  return report.dump(2, ' ', false, json::error_handler_t::replace) + '\n';
}

}  // namespace arbor::tree
