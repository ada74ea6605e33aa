#include "arbor/processes/score_list.h"

#include <cstring>
#include <limits>
#include <stdexcept>

namespace arbor::tree {

namespace {

constexpr std::uint32_t no_score = std::numeric_limits<std::uint32_t>::max();
constexpr unsigned int hash_bits = 16;

std::uint64_t bits_of(double number) {
  std::uint64_t bits = 0;
  std::memcpy(&bits, &number, sizeof bits);
  return bits;
}

// The high bits of a product by an odd number depend on all bits of the factor.
std::size_t hash_of(std::uint64_t key) {
  return (key * 0x9E3779B97F4A7C15U) >> (64U - hash_bits);
}

}  // namespace

bool score_list::score::operator==(const score& other) const {
  return actual == other.actual && predicted == other.predicted && lost_bits == other.lost_bits &&
         squared_difference == other.squared_difference;
}

score_list::score_list() : recent(std::size_t{1} << hash_bits, no_score) {}

void score_list::add(const scored_case& added) {
  const score own{static_cast<std::uint32_t>(added.actual),
                  static_cast<std::uint32_t>(added.predicted), added.lost_bits,
                  added.squared_difference};
  std::uint32_t& known =
      recent[hash_of(bits_of(own.lost_bits) + bits_of(own.squared_difference) + own.actual)];
  if (known == no_score || !(scores[known] == own)) {
    if (scores.size() == no_score) throw std::length_error("too many cases to evaluate");
    known = static_cast<std::uint32_t>(scores.size());
    scores.push_back(own);
  }
  cases.push_back({known, static_cast<float>(added.weight)});
}

void score_list::add_to(evaluation& sums) const {
  for (const case_score& added : cases) {
    const score& of_case = scores[added.score];
    sums.add({of_case.actual, of_case.predicted, static_cast<double>(added.weight),
              of_case.lost_bits, of_case.squared_difference});
  }
}

evaluation evaluation_of_all(process_group& group, const score_list& own) {
  std::vector<double> sums;
  std::vector<std::uint64_t> size(1);
  if (!group.is_first()) {
    group.receive(size, group.rank() - 1);
    sums.resize(size[0]);
    group.receive(sums, group.rank() - 1);
  }
  evaluation result = evaluation::with_sums(sums);
  own.add_to(result);
  sums = result.sums();
  if (!group.is_last()) {
    size[0] = sums.size();
    group.send(size, group.rank() + 1);
    group.send(sums, group.rank() + 1);
  }
  group.broadcast(sums, group.size() - 1);
  return evaluation::with_sums(sums);
}

}  // namespace arbor::tree
