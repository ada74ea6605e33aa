#include "arbor/table/text_remarks.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <utility>

#include "arbor/csv/message_text.h"
#include "arbor/csv/shown_text.h"
#include "arbor/csv/unknown_texts.h"

namespace arbor::tree {

namespace {

constexpr std::size_t most_names = 3;
constexpr std::size_t most_texts_named = 5;
constexpr std::size_t most_texts_declared = 50;

// Whether a message shows the text as it is, so that a person can copy it from there.
bool is_shown_whole(const std::string& text) {
  return printable(text) == text && text.size() < 60;
}

// "column "a" is", "columns "a" and "b" are"
std::string columns_are(const std::vector<std::string>& columns) {
  if (columns.size() == 1) return "column " + in_quotes(columns.front()) + " is";
  std::string list;
  for (std::size_t i = 0; i < columns.size() && i < most_names; ++i) {
    const bool is_last = i + 1 == columns.size();
    list += (i == 0 ? "" : is_last ? " and " : ", ") + in_quotes(columns[i]);
  }
  if (columns.size() > most_names) list += fmt::format(" and {} more", columns.size() - most_names);
  return "columns " + list + " are";
}

// "column "a" is of texts, but all its", "columns "a" and "b" are of texts, but all their"
std::string texts_of(const std::vector<std::string>& columns) {
  return columns_are(columns) + " of texts, but all " + (columns.size() == 1 ? "its" : "their");
}

// The texts of all columns, the most frequent ones first, and of equally frequent ones the first.
std::vector<column_survey::other_text> all_others(const std::vector<near_numbers>& columns) {
  std::vector<column_survey::other_text> all;
  std::map<std::string, std::size_t> places;
  for (const near_numbers& column : columns) {
    for (const auto& [text, cells] : column.others) {
      const auto [place, is_new] = places.emplace(text, all.size());
      if (is_new) all.push_back({text, 0});
      all[place->second].cells += cells;
    }
  }
  std::stable_sort(all.begin(), all.end(),
                   [](const auto& a, const auto& b) { return a.cells > b.cells; });
  return all;
}

table_remark remark_on_others(const std::vector<near_numbers>& columns,
                              const std::vector<std::string>& unknown_texts) {
  std::vector<std::string> names;
  for (const near_numbers& column : columns) {
    if (!column.others.empty()) names.push_back(column.column);
  }
  table_remark remark;
  if (names.empty()) return remark;
  remark.text = texts_of(names) + " values are numbers except ";
  remark.to_declare = unknown_texts;
  bool can_be_declared = true;
  const std::vector<column_survey::other_text> others = all_others(columns);
  const std::size_t named = std::min(others.size(), most_texts_named);
  for (std::size_t i = 0; i < named; ++i) {
    const auto& [text, cells] = others[i];
    remark.text += (i == 0 ? "" : ", ") + in_quotes(text) + " in " + counted(cells, "cell");
  }
  if (others.size() > named) remark.text += " and " + counted(others.size() - named, "other text");
  for (std::size_t i = 0; i < others.size() && i < most_texts_declared; ++i) {
    remark.to_declare.push_back(unknown_texts::declared(others[i].text));
    can_be_declared = can_be_declared && is_shown_whole(others[i].text);
  }
  if (!can_be_declared) remark.to_declare.clear();
  return remark;
}

bool same_forms(const std::vector<number_form>& a, const std::vector<number_form>& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](const number_form& x, const number_form& y) {
                      return x.decimal_mark == y.decimal_mark && x.grouped == y.grouped &&
                             x.stripped == y.stripped;
                    });
}

}  // namespace

table_remark remark_on_rounded(const std::vector<std::string>& columns, std::size_t cells) {
  table_remark remark;
  remark.text = columns_are(columns) + " rounded to float, which changes the numbers in " +
                counted(cells, "cell");
  return remark;
}

std::vector<table_remark> remarks_on_texts(const std::vector<near_numbers>& columns,
                                           const std::vector<std::string>& unknown_texts) {
  std::vector<table_remark> remarks;
  table_remark on_others = remark_on_others(columns, unknown_texts);
  if (!on_others.text.empty()) remarks.push_back(std::move(on_others));
  std::vector<std::pair<near_numbers, std::vector<std::string>>> alike;  // and their names
  for (const near_numbers& column : columns) {
    if (column.forms.empty()) continue;
    const auto found = std::find_if(alike.begin(), alike.end(), [&](const auto& other) {
      return same_forms(other.first.forms, column.forms);
    });
    if (found == alike.end()) {
      alike.push_back({column, {column.column}});
    } else {
      found->second.push_back(column.column);
    }
  }
  for (const auto& [first, names] : alike) {
    table_remark& remark = remarks.emplace_back();
    remark.text =
        texts_of(names) + " values are numbers in another form, such as " + in_quotes(first.sample);
    remark.to_read = first.forms;
  }
  return remarks;
}

}  // namespace arbor::tree
