#include "arbor/csv/message_text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <numeric>

#include "arbor/csv/shown_text.h"
#include "arbor/csv/table_error.h"

namespace arbor::tree {

namespace {

// Longer names and texts are not compared: nobody mistypes those, and the time grows with the
// product of both lengths.
constexpr std::size_t longest_compared = 64;

// A text in lower case.
class short_text {
 public:
  // Of at most longest_compared characters.
  explicit short_text(const std::string& text) : length(text.size()) {
    std::transform(text.begin(), text.end(), characters.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  }
  std::size_t size() const { return length; }
  char operator[](std::size_t i) const { return characters[i]; }

 private:
  std::array<char, longest_compared> characters{};
  std::size_t length;
};

// How many single-character insertions, deletions, replacements and swaps of neighbours turn one
// text into the other (F. J. Damerau, Communications of the ACM 7 (1964), 171-176), three rows of
// the table at a time; `end` or more if they are at least that many.
std::size_t edit_distance(const short_text& a, const short_text& b, std::size_t end) {
  if (std::max(a.size(), b.size()) - std::min(a.size(), b.size()) >= end) return end;
  std::array<std::array<std::size_t, longest_compared + 1>, 3> rows{};
  std::iota(rows[0].begin(), rows[0].end(), std::size_t{0});
  std::size_t least_up = 0;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    auto& row = rows[i % 3];
    const auto& up = rows[(i - 1) % 3];
    const auto& two_up = rows[(i + 1) % 3];
    std::size_t least = row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t replaced = up[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
      row[j] = std::min({replaced, up[j] + 1, row[j - 1] + 1});
      const bool swapped = i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
      if (swapped) row[j] = std::min(row[j], two_up[j - 2] + 1);
      least = std::min(least, row[j]);
    }
    // Every later entry is made of entries of the last two rows.
    if (std::min(least, least_up) >= end) return end;
    least_up = least;
  }
  return rows[a.size() % 3][b.size()];
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
  if (mistyped.size() > longest_compared) return "";
  const short_text text(mistyped);
  const std::string* best = nullptr;
  std::size_t end = std::max<std::size_t>(1, mistyped.size() / 3) + 1;
  for (const std::string& name : names) {
    if (name.size() > longest_compared) continue;
    const std::size_t distance = edit_distance(text, short_text(name), end);
    if (distance >= end) continue;
    best = &name;
    end = distance;
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
