#include "arbor/model/column.h"

#include <algorithm>
#include <array>
#include <limits>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <utility>

namespace arbor::impls {

namespace {

constexpr std::array<std::pair<const char*, column::_type>, 5> kinds{
    {{"discrete", column::DISCRETE},
     {"continuous", column::CONTINUOUS},
     {"class", column::CLASS},
     {"weights", column::WEIGHTS},
     {"ignore", column::IGNORE}}};

}  // namespace

column::column(o_set* adopted_domain, const std::string& column_name, _type kind)
    : type(kind), name(column_name), domain(adopted_domain) {}

column::~column() = default;

bool column::get_type(const std::string& text, _type& kind) {
  for (const auto& [known_text, known_kind] : kinds) {
    if (text == known_text) {
      kind = known_kind;
      return true;
    }
  }
  return false;
}

std::string column::get_type() const {
  for (const auto& [text, kind] : kinds) {
    if (type == kind) return text;
  }
  return "unspecified";
}

bool column::admits_null(const std::string& text) {
  return text != "weights";
}

column* column::clone(bool /*empty*/) {
  std::unique_ptr<o_set> domain_copy(domain->clone());
  auto copy = std::make_unique<column>(nullptr, name, type);
  copy->domain.reset(domain_copy.release());
  return copy.release();
}

void column::reserve(unsigned int /*rows*/) {}

unsigned int column::size() const {
  return 0;
}

void column::push_back(const char* /*value*/) {}

void column::append_codes(const unsigned int* codes, unsigned int count) {
  check_codes(codes, count);
}

void column::check_room(unsigned int count) const {
  if (count > std::numeric_limits<unsigned int>::max() - size()) {
    throw std::runtime_error("a column has at most 4294967295 rows");
  }
}

void column::check_codes(const unsigned int* codes, unsigned int count) const {
  check_room(count);
  const unsigned int lowest = domain->contains_null() ? 0 : 1;
  const unsigned long long admissible = domain->size_of_known() + 1ULL - lowest;
  unsigned int greatest = 0;  // of the codes less the lowest, where 0 may become the largest number
  for (unsigned int i = 0; i < count; ++i) greatest = std::max(greatest, codes[i] - lowest);
  if (count > 0 && greatest >= admissible) throw std::runtime_error("column require a valid o_set");
}

unsigned int column::get_row_index(unsigned int /*row*/) const {
  return 0;
}

bool column::less_than(unsigned int /*a*/, unsigned int /*b*/) const {
  return false;
}

void column::toXML(std::ostream& out) const {
  out << R"(<WARNING value="XML output not implemented" />)" << std::endl;
}

w_sequence* column::partition(w_sequence::const_iterator /*begin*/,
                              w_sequence::const_iterator /*end*/, unsigned int /*branch*/,
                              float /*total*/, float& /*ratio*/,
                              strata::util::pair<unsigned int, unsigned int>& /*range*/,
                              const partition_desc& /*desc*/) const {
  throw std::runtime_error("[column::partition] method not defined for column type '" + get_type() +
                           "'");
}

void column::quality_measure(column* /*class_column*/, float /*total_weight*/,
                             w_sequence* /*cases*/,
                             strata::util::pair<unsigned int, unsigned int>& /*code_range*/,
                             float /*min_weight*/, options* /*opts*/, splitting_desc& result,
                             bool /*copy_cases*/) const {
  result.set_no_split();
}

strata::util::pair<unsigned int, unsigned int> column::get_range() const {
  const unsigned int known = domain->size_of_known();
  if (known == 0) return {0, 0};
  return {1, known + 1};
}

unsigned int column::get_index(const char* value) const {
  unsigned int code = 0;
  return domain->get_order(value, code) ? code : 0;
}

std::string column::find_threshold(unsigned int low, unsigned int high) const {
  return is_continuous() ? domain->find_mid(low, high) : domain->get_null();
}

void column::splitting_desc::set_partition_desc(partition_desc& target) const {
  target.threshold = split_column->find_threshold(low_code, high_code);
  target.branches = branches;
}

void column::partition_desc::reset() {
  threshold.clear();
  branches = 0;
}

}  // namespace arbor::impls
