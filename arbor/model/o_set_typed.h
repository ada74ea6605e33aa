// The domain of one data type: values of type T, in ascending order.
//
// It has two states. Inserted values collect in a builder; the first question freezes them into one
// sorted vector, and a later insertion moves that vector back into the builder.
#ifndef ARBOR_MODEL_O_SET_TYPED_H
#define ARBOR_MODEL_O_SET_TYPED_H

#include <string>
#include <vector>

#include "arbor/model/o_set.h"
#include "arbor/utils/datatype.h"
#include "arbor/utils/set.h"

namespace arbor::impls {

// T is datatype<int>, datatype<unsigned int>, datatype<float>, datatype<double> or
// datatype<std::string>. The operations are those of o_set. What is special to a data type:
//
//   int, unsigned int   decimal digits, as str2int reads them
//   float, double       any number that strtod reads to the end of the text; a float is rounded to
//                       the nearest one, or infinite if too large. Of 0 and -0 the one inserted
//                       first is kept. Each NaN inserted is a value with a code, but no lookup
//                       finds it.
//   std::string         the text itself. Texts are sorted as unsigned bytes but searched and
//                       compared as signed ones, so a text with bytes of 0x80 and above may not be
//                       found.
//
// A frozen domain does not release its vector of known values when it is destroyed: by design that
// vector lives as long as the process, unless release_values_at_end was called. (An insertion,
// which thaws the domain, does release it.)
template <class T>
class o_set_typed : public o_set {
 public:
  o_set_typed(const std::string& data_type, bool admits_null, const std::string& null_text);
  ~o_set_typed() override;

  void insert(const char* value) override;
  // Adds known values, as if the text of each was inserted in this order. Fastest into a domain
  // without values if they ascend without repeats. They must be values that a text can have: not
  // the least int, and no std::string with a zero byte. A value whose text is the null text becomes
  // a known value all the same, which no lookup finds. Throws std::bad_alloc; nothing is added
  // then.
  void insert_values(std::vector<T> values);
  unsigned int size_of_known() override;
  bool get_order(const char* value, unsigned int& code) override;
  std::string get_value(unsigned int code) override;
  o_set* clone() override;
  int leq(const std::string& a, const std::string& b) const override;
  int leq(unsigned int code, const std::string& b) override;
  std::string find_mid(unsigned int low, unsigned int high) override;
  unsigned int find_mid_code(unsigned int low, unsigned int high) override;
  strata::inpout::obinstream& bin_out(strata::inpout::obinstream& out) override;
  strata::inpout::ibinstream& bin_in(strata::inpout::ibinstream& in) override;

 private:
  unsigned int mid_code(unsigned int low, unsigned int high);
  const std::vector<T>& frozen_values();  // freezes
  void freeze();
  void thaw();

  strata::adt::set<T> builder;
  T scratch;  // the value parsed last; with its storage, parsing a repeat needs no allocation
  // Entry i has code i + 1. Null while values are inserted, and after an absent vector was read.
  std::vector<T>* known_values = nullptr;
  bool frozen = false;
};

extern template class o_set_typed<strata::data_types::datatype<int>>;
extern template class o_set_typed<strata::data_types::datatype<unsigned int>>;
extern template class o_set_typed<strata::data_types::datatype<float>>;
extern template class o_set_typed<strata::data_types::datatype<double>>;
extern template class o_set_typed<strata::data_types::datatype<std::string>>;

}  // namespace arbor::impls

#endif
