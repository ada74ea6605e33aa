#include "bench/sample.h"

#include <algorithm>
#include <random>

namespace arbor::bench {

namespace {

double uniform(std::mt19937_64& random) {
  return static_cast<double>(random() >> 11U) * 0x1p-53;
}

}  // namespace

std::unique_ptr<column> make_column(const std::string& kind, const std::string& data_type,
                                    const std::vector<std::string>& domain) {
  std::unique_ptr<o_set> values(o_set::NEW_O_SET(data_type, true, "?"));
  for (const std::string& text : domain) values->insert(text.c_str());
  std::string error;
  std::unique_ptr<column> made(column::NEW_COLUMN(values.get(), "x", kind, error));
  if (made == nullptr) throw std::logic_error(error);
  values.release();
  return made;
}

std::vector<std::string> integer_texts(unsigned int count) {
  std::vector<std::string> texts;
  for (unsigned int i = 0; i < count; ++i) texts.push_back(std::to_string(i));
  return texts;
}

std::string with_thousands(unsigned int number) {
  std::string text = std::to_string(number);
  for (std::size_t at = text.size(); at > 3; text.insert(at, ",")) at -= 3;
  return text;
}

sample::sample() : position(rows), class_position(rows) {
  std::mt19937_64 random(1);
  for (unsigned int row = 0; row < rows; ++row) {
    position[row] = uniform(random);
    class_position[row] = (random() & 1U) != 0 ? position[row] : uniform(random);
  }
}

column* sample::attribute(const std::string& kind, unsigned int known) {
  return filled(kind + std::to_string(known), kind, known,
                [=](double at) { return static_cast<unsigned int>(at * known); });
}

column* sample::skewed() {
  return filled("skewed", "discrete", 3, [](double at) {
    return at < 0.25 ? 0U : at < 0.75 ? 1U : 2U;
  });
}

column* sample::filled(const std::string& key, const std::string& kind, unsigned int known,
                       const std::function<unsigned int(double)>& value_at) {
  std::unique_ptr<column>& kept = columns[key];
  if (kept != nullptr) return kept.get();
  const std::vector<std::string> texts = integer_texts(known);
  std::unique_ptr<column> made = make_column(kind, "integer", texts);
  made->reserve(rows);
  for (const double at : made->is_class() ? class_position : position)
    made->push_back(texts[value_at(at)].c_str());
  kept = std::move(made);
  return kept.get();
}

w_sequence sample::node(row_order order, weighing weights) {
  std::mt19937_64 random(2);
  w_sequence result;
  result.reserve(cases);
  for (unsigned int row = 0; result.size() < cases; ++row) {
    // Each row with the share of the cases that are still wanted among the rows that are left.
    const bool taken = order == row_order::rows ||
                       random() % (rows - row) < static_cast<std::uint64_t>(cases - result.size());
    if (taken) result.push_back({row, 1.0F});
  }
  if (order == row_order::shuffled) std::shuffle(result.begin(), result.end(), random);
  if (weights == weighing::uneven) {
    for (weighted_case& c : result) c.second = static_cast<float>(0.25 + uniform(random));
  }
  return result;
}

}  // namespace arbor::bench
