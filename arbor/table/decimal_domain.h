// The domain of decimal numbers that are multiples of a common step away from the least one: money,
// coordinates, times in milliseconds, identifiers of 64 bits. Each is exact.
//
//   decimal_domain prices({199, 50, 2}, true, "?");   // 1.99, 2.49, 2.99 and so on
//   prices.insert("2.49");
//   prices.get_value(1);                              // "2.49"
//
// It holds each value as its number of steps from the least one. Its data type is "uinteger", that
// of the steps, so that columns may be continuous and measures compare codes; its record is that of
// the steps. All texts that go in or come out are those of the decimal numbers.
#ifndef ARBOR_TABLE_DECIMAL_DOMAIN_H
#define ARBOR_TABLE_DECIMAL_DOMAIN_H

#include <limits>
#include <string>

#include "arbor/model/column.h"
#include "arbor/model/o_set_typed.h"
#include "arbor/table/cells/plain_number.h"
#include "arbor/table/decimal.h"

namespace arbor::tree {

// Step k, from 0 on, is the number (least + k step) 10^-decimals.
struct decimal_scale {
  wide_integer least = 0;
  wide_integer step = 1;
  unsigned int decimals = 0;

  // The number of a step in the fewest digits, without an exponent.
  std::string text_of(unsigned int number) const;

  // Where a number is on the scale: k if it is step k, and k + 0.5 between it and the next one.
  // What is below the least number is at -0.5, what is above the last step beyond that one.
  double position(const decimal_number& number) const;
  double position(plain_number number) const;
  // The same for any text of a number. Returns false if it is none.
  bool position(const char* text, double& position) const;

 private:
  double position(const floored_decimal& number) const;
};

constexpr unsigned int last_step = std::numeric_limits<unsigned int>::max();
// The numbers of a scale, times 10^decimals, are below 10^37, so that no sum or difference of two
// overflows. It has no more decimals.
constexpr unsigned int most_scale_digits = 37;

// Whether the scale is as described up to this step.
bool is_sound(const decimal_scale& scale, unsigned int greatest_step);

class decimal_domain : public impls::o_set_typed<strata::data_types::datatype<unsigned int>> {
 public:
  decimal_domain(const decimal_scale& of_values, bool admits_null, const std::string& null_text);
  // With the values of a domain of steps, of the data type "uinteger", and what it has of the
  // unknown value.
  decimal_domain(const decimal_scale& of_values, o_set& steps);

  const decimal_scale& scale() const { return scale_; }

  // Throws std::runtime_error for a number that is no step of the scale.
  void insert(const char* value) override;
  bool get_order(const char* value, unsigned int& code) override;
  std::string get_value(unsigned int code) override;
  o_set* clone() override;
  int leq(const std::string& a, const std::string& b) const override;
  int leq(unsigned int code, const std::string& b) override;
  std::string find_mid(unsigned int low, unsigned int high) override;
  unsigned int find_mid_code(unsigned int low, unsigned int high) override;

 private:
  unsigned int step_of(unsigned int code);
  std::string step_text(double step) const;

  decimal_scale scale_;
};

// The scale of a column of decimals; null for other columns.
const decimal_scale* scale_of(const impls::column& column);

// The data type of a column as people see it: "decimal" for one of decimals, else that of its
// domain.
std::string data_type_of(const impls::column& column);

}  // namespace arbor::tree

#endif
