// A discrete column of at most two known values and no unknown one, in one bit a row.
#ifndef ARBOR_MODEL_COLUMN_BOOL_H
#define ARBOR_MODEL_COLUMN_BOOL_H

#include "arbor/model/column.h"
#include "arbor/utils/bitmap.h"

namespace arbor::impls {

// A clear bit is code 1, a set bit code 2.
class column_bool : public column {
 public:
  column_bool(o_set* domain, const std::string& name, _type type);

  // With `empty` false the copy shares the bits with this column, as copies of a bitmap do: a bit
  // that is changed in one changes in the other, too.
  column* clone(bool empty) override;
  void reserve(unsigned int rows) override;
  unsigned int size() const override { return values.size(); }
  // Throws "[column::push_back] index not found for value '<value>'" for a text that the domain
  // does not contain; the null text of a domain that contains it counts as the first value.
  void push_back(const char* value) override;
  void append_codes(const unsigned int* codes, unsigned int count) override;
  unsigned int get_row_index(unsigned int row) const override { return values[row] ? 2 : 1; }
  bool less_than(unsigned int a, unsigned int b) const override { return !values[a] && values[b]; }

  w_sequence* partition(w_sequence::const_iterator begin, w_sequence::const_iterator end,
                        unsigned int branch, float total, float& ratio,
                        strata::util::pair<unsigned int, unsigned int>& range,
                        const partition_desc& desc) const override;

  void quality_measure(column* class_column, float total_weight, w_sequence* cases,
                       strata::util::pair<unsigned int, unsigned int>& code_range, float min_weight,
                       options* opts, splitting_desc& result, bool copy_cases) const override;

  // Reading replaces the rows. A record of fewer rows than the column has shortens the column and
  // is then refused, as by bitmap::resize. If the device throws, the column has the new length and
  // some of the bits may have been read.
  strata::inpout::obinstream& bin_out(strata::inpout::obinstream& out) const override;
  strata::inpout::ibinstream& bin_in(strata::inpout::ibinstream& in) override;

  // One branch per value; see quality_measure for the arguments.
  void QualityMeasureDiscrete(column* class_column, float total_weight, w_sequence* cases,
                              strata::util::pair<unsigned int, unsigned int>& code_range,
                              float min_weight, splitting_desc& result) const;

  // The bits in row order.
  const strata::adt::bitmap& bits() const { return values; }

 protected:
  strata::adt::bitmap values;
};

}  // namespace arbor::impls

#endif
