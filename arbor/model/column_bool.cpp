#include "arbor/model/column_bool.h"

#include <memory>
#include <stdexcept>

#include "arbor/model/measure/case_partition.h"
#include "arbor/model/measure/discrete_quality.h"
#include "arbor/utils/text_storage.h"

namespace arbor::impls {

column_bool::column_bool(o_set* adopted_domain, const std::string& column_name, _type kind)
    : column(adopted_domain, column_name, kind) {}

column* column_bool::clone(bool empty) {
  auto copy = std::make_unique<column_bool>(nullptr, name, type);
  copy->domain.reset(domain->clone());
  if (!empty) copy->values = values;
  return copy.release();
}

void column_bool::reserve(unsigned int rows) {
  values.reserve(rows);
}

void column_bool::push_back(const char* value) {
  unsigned int code = 0;
  if (!domain->get_order(value, code)) {
    throw std::runtime_error(
        strata::util::joined({"[column::push_back] index not found for value '", value, "'"}));
  }
  values.push_back(code == 2);
}

void column_bool::append_codes(const unsigned int* codes, unsigned int count) {
  check_codes(codes, count);
  values.reserve(values.size() + count);
  for (unsigned int i = 0; i < count; ++i) values.push_back(codes[i] == 2);
}

w_sequence* column_bool::partition(w_sequence::const_iterator begin, w_sequence::const_iterator end,
                                   unsigned int branch, float total, float& ratio,
                                   strata::util::pair<unsigned int, unsigned int>& range,
                                   const partition_desc& desc) const {
  if (type != DISCRETE && type != CLASS)
    return column::partition(begin, end, branch, total, ratio, range, desc);
  branch_cases result;
  // Any branch but the second value's is the first value's.
  with_codes(*this, [&](auto code_of) {
    result = cases_of_value(begin, end, branch == 2 ? 2 : 1, total, code_of);
  });
  ratio = result.ratio;
  range = {branch, branch + 1};
  return result.cases.release();
}

strata::inpout::obinstream& column_bool::bin_out(strata::inpout::obinstream& out) const {
  return (out << size()).write_block(values.data(), values.word_count());
}

strata::inpout::ibinstream& column_bool::bin_in(strata::inpout::ibinstream& in) {
  unsigned int count = 0;
  in >> count;
  in.expect(count / 32 + (count % 32 != 0 ? 1 : 0), sizeof(unsigned int));
  values.resize(count);
  try {
    in.read_block(values.data(), values.word_count());
  } catch (...) {
    values.clear_behind();
    throw;
  }
  values.clear_behind();
  return in;
}

void column_bool::quality_measure(column* class_column, float total_weight, w_sequence* cases,
                                  strata::util::pair<unsigned int, unsigned int>& code_range,
                                  float min_weight, options* /*opts*/, splitting_desc& result,
                                  bool /*copy_cases*/) const {
  result.branches = 0;
  result.split_column = const_cast<column_bool*>(this);  // handed out, not changed
  result.set_no_split();
  if (code_range.second - code_range.first <= 1 || type != DISCRETE) return;
  QualityMeasureDiscrete(class_column, total_weight, cases, code_range, min_weight, result);
}

void column_bool::QualityMeasureDiscrete(column* class_column, float total_weight,
                                         w_sequence* cases,
                                         strata::util::pair<unsigned int, unsigned int>& code_range,
                                         float min_weight, splitting_desc& result) const {
  result.branches = domain->size_of_known();
  with_column_codes(*this, [&](auto code_of) {
    with_class_table(code_of, *class_column, *cases, code_range, [&](const auto& table) {
      rate_discrete(table, total_weight, min_weight, result);
    });
  });
}

}  // namespace arbor::impls
