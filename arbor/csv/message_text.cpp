#include "arbor/csv/message_text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <numeric>
#include <utility>

#include "arbor/csv/shown_text.h"
#include "arbor/csv/table_error.h"

namespace arbor::tree {

namespace {

std::string lower_case(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

// How many single-character insertions, deletions, replacements and swaps of neighbours turn one
// text into the other (F. J. Damerau, Communications of the ACM 7 (1964), 171-176), three rows of
// the table at a time.
std::size_t edit_distance(const std::string& a, const std::string& b) {
  std::vector<std::size_t> two_up;
  std::vector<std::size_t> up(b.size() + 1);
  std::iota(up.begin(), up.end(), std::size_t{0});
  for (std::size_t i = 1; i <= a.size(); ++i) {
    std::vector<std::size_t> row{i};
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t replaced = up[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
      row.push_back(std::min({replaced, up[j] + 1, row[j - 1] + 1}));
      const bool swapped = i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
      if (swapped) row[j] = std::min(row[j], two_up[j - 2] + 1);
    }
    two_up = std::exchange(up, std::move(row));
  }
  return up.back();
}

}  // namespace

std::string counted(std::size_t count, const std::string& one, const std::string& many) {
  return std::to_string(count) + " " + (count == 1 ? one : many.empty() ? one + "s" : many);
}

std::string shell_word(const std::string& text) {
  std::string result = "'";
  for (const char c : text) result += c == '\'' ? "'\\''" : std::string(1, c);
  return result + "'";
}

std::string did_you_mean(const std::string& mistyped, const std::vector<std::string>& names) {
  const std::size_t near = std::max<std::size_t>(1, mistyped.size() / 3);
  const std::string* best = nullptr;
  std::size_t best_distance = near + 1;
  for (const std::string& name : names) {
    const std::size_t distance = edit_distance(lower_case(mistyped), lower_case(name));
    if (distance >= best_distance) continue;
    best = &name;
    best_distance = distance;
  }
  return best == nullptr ? "" : "; did you mean " + in_quotes(*best) + "?";
}

void check_choice(const std::string& before, const std::string& choice,
                  const std::vector<std::string>& choices) {
  if (std::find(choices.begin(), choices.end(), choice) != choices.end()) return;
  throw table_error(fmt::format("{}{} is none of {}{}", before, in_quotes(choice),
                                fmt::join(choices, ", "), did_you_mean(choice, choices)));
}

}  // namespace arbor::tree
