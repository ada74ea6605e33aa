#include "arbor/report/rating_report.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>

#include "arbor/csv/csv_cell.h"
#include "arbor/csv/message_text.h"
#include "arbor/csv/shown_text.h"
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

struct class_weight {
  std::string value;
  float weight = 0;
};

// By code.
std::vector<class_weight> named_class_weights(const table& described, const case_summary& cases) {
  std::vector<class_weight> result;
  for (const float weight : cases.class_weights) {
    const auto code = static_cast<unsigned int>(result.size()) + 1;
    result.push_back({value_text(described.class_column(), code), weight});
  }
  return result;
}

double unknown_share(const case_summary& cases, const attribute_rating& rating) {
  return static_cast<double>(rating.unknown_cells) / static_cast<double>(cases.rows);
}

// A value in a list, in quotes where a reader could not see where it begins or ends.
std::string listed(const std::string& value, std::size_t width) {
  const bool plain = !value.empty() && value.find_first_of(" ,\"\n\r\t") == std::string::npos;
  return plain ? shown(value, width) : in_quotes(value, width);
}

std::string split_as_text(const attribute_rating& rating) {
  if (!rating.split) return "no split: " + rating.no_split_reason;
  if (rating.split->threshold) return "<= " + *rating.split->threshold;
  return fmt::format("{} branches", rating.split->branches);
}

// Keeps the heaviest classes, heaviest first, if there are more than `most`. Returns how many were
// removed.
std::size_t keep_heaviest(std::vector<class_weight>& classes, std::size_t most) {
  if (classes.size() <= most) return 0;
  const std::size_t removed = classes.size() - most;
  const auto heavier = [](const class_weight& a, const class_weight& b) {
    return a.weight > b.weight;
  };
  std::stable_sort(classes.begin(), classes.end(), heavier);
  classes.resize(most);
  return removed;
}

// " no 5, yes 9"
std::string class_list(std::vector<class_weight> classes, std::size_t width) {
  constexpr std::size_t most_classes = 20;
  const std::size_t removed = keep_heaviest(classes, most_classes);
  std::string list;
  for (const auto& [value, weight] : classes) {
    list += (list.empty() ? " " : ", ") + listed(value, width) + " " + shortest_text(weight);
  }
  if (removed > 0) list += fmt::format(", and {} lighter ones", removed);
  return list;
}

// A number of a split to six decimals, or a dash.
std::string decimal(const attribute_rating& rating, float split_rating::*member) {
  return rating.split ? fmt::format("{:.6f}", (*rating.split).*member) : "-";
}

std::optional<std::string> chosen_attribute(const table_rating& ratings) {
  for (const attribute_rating& rating : ratings.attributes) {
    if (rating.chosen) return rating.name;
  }
  return std::nullopt;
}

// Which attribute a tree would test, so that the choice can be followed in the ratings.
std::string choice_as_text(const table_rating& ratings, std::size_t width) {
  const std::optional<std::string> chosen = chosen_attribute(ratings);
  if (!chosen) return "\nNo judged gain is above 0.\n";
  return fmt::format(
      "\nThe judged gains above 0 are {:.6f} on average; of the attributes that reach this, {} has "
      "the best gain ratio.\n",
      ratings.average_judged_gain, in_quotes(*chosen, width));
}

void table_to_json(json_writer& json, const table& rated, const case_summary& cases) {
  json.open('{');
  json.member("name", rated.name);
  json.member("rows", cases.rows);
  json.member("attributes", attribute_count(rated));
  json.member("unknown_cells", cases.unknown_cells);
  json.member("weight", cases.weight);
  json.member("class", rated.class_column().get_name());
  json.key("classes").open('[');
  for (const auto& [value, weight] : named_class_weights(rated, cases)) {
    json.open('{').member("value", value).member("weight", weight).close();
  }
  json.close().close();
}

void rating_to_json(json_writer& json, const case_summary& cases, const attribute_rating& rating) {
  const auto of_split = [&rating](auto split_rating::*member) {
    return rating.split ? std::optional((*rating.split).*member) : std::nullopt;
  };
  json.open('{');
  json.member("attribute", rating.name);
  json.member("kind", rating.kind);
  json.member("type", rating.data_type);
  json.member("values", rating.values);
  json.member("unknown", static_cast<float>(unknown_share(cases, rating)));
  json.member("gain", of_split(&split_rating::gain));
  json.member("split_info", of_split(&split_rating::split_info));
  json.member("gain_ratio", of_split(&split_rating::gain_ratio));
  json.member("branches", of_split(&split_rating::branches));
  json.member("threshold", rating.split ? rating.split->threshold : std::nullopt);
  json.member("no_split", rating.split ? std::nullopt : std::optional(rating.no_split_reason));
  json.member("judged_gain", of_split(&split_rating::judged_gain));
  json.close();
}

}  // namespace

std::string table_line(const table& described, const case_summary& cases, std::size_t width) {
  return fmt::format("{}: {}, {}, {}; class {}:{}", described.name, counted(cases.rows, "row"),
                     counted(attribute_count(described), "attribute"),
                     counted(cases.unknown_cells, "unknown cell"),
                     in_quotes(described.class_column().get_name(), width),
                     class_list(named_class_weights(described, cases), width));
}

void write_ratings_text(std::ostream& out, const case_summary& cases, const table_rating& ratings,
                        std::size_t width) {
  const auto row = [&](std::size_t r) -> std::vector<std::string> {
    if (r == 0) {
      return {"attribute", "kind",   "type",       "values",     "unknown",
              "gain",      "judged", "split info", "gain ratio", "split"};
    }
    const attribute_rating& rating = ratings.attributes[r - 1];
    return {shown(rating.name, width),
            rating.kind,
            rating.data_type,
            std::to_string(rating.values),
            fmt::format("{:.1f}%", 100 * unknown_share(cases, rating)),
            decimal(rating, &split_rating::gain),
            decimal(rating, &split_rating::judged_gain),
            decimal(rating, &split_rating::split_info),
            decimal(rating, &split_rating::gain_ratio),
            split_as_text(rating)};
  };
  write_aligned(out, "lllrrrrrrl", 1 + ratings.attributes.size(), row);
  out << choice_as_text(ratings, width);
}

void write_ratings_csv(std::ostream& out, const case_summary& cases, const table_rating& ratings) {
  out << "attribute,kind,type,values,unknown,gain,split_info,gain_ratio,branches,threshold,"
         "no_split,judged_gain\n";
  for (const attribute_rating& rating : ratings.attributes) {
    out << csv_cell(rating.name)
        << fmt::format(",{},{},{},{},", rating.kind, rating.data_type, rating.values,
                       shortest_text(static_cast<float>(unknown_share(cases, rating))));
    if (rating.split) {
      const split_rating& split = *rating.split;
      out << fmt::format("{},{},{},{},{},,{}\n", shortest_text(split.gain),
                         shortest_text(split.split_info), shortest_text(split.gain_ratio),
                         split.branches, split.threshold.value_or(""),
                         shortest_text(split.judged_gain));
    } else {
      out << fmt::format(",,,,,{},\n", csv_cell(rating.no_split_reason));
    }
  }
}

void write_ratings_json(std::ostream& out, const table& rated, const case_summary& cases,
                        const table_rating& ratings) {
  json_writer json(out);
  write_format(json.open('{'), "arbor-ratings");
  table_to_json(json.key("table"), rated, cases);
  json.key("ratings").open('[');
  for (const attribute_rating& rating : ratings.attributes) rating_to_json(json, cases, rating);
  json.close();
  json.member("average_judged_gain", static_cast<float>(ratings.average_judged_gain));
  json.member("chosen", chosen_attribute(ratings));
  json.close();
}

}  // namespace arbor::tree
