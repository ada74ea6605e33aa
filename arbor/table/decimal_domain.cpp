#include "arbor/table/decimal_domain.h"

#include <cmath>
#include <cstdint>
#include <stdexcept>

#include "arbor/utils/memory_device.h"
#include "arbor/utils/string_util.h"

namespace arbor::tree {

using strata::data_types::datatype;

namespace {

using step_domain = impls::o_set_typed<datatype<unsigned int>>;

// Of numbers from 0 up. The division of 128 bits takes several times as long.
wide_integer quotient(wide_integer a, wide_integer b) {
  if (b == 1) return a;
  constexpr auto most = static_cast<wide_integer>(std::numeric_limits<std::uint64_t>::max());
  if (a <= most && b <= most) return static_cast<std::uint64_t>(a) / static_cast<std::uint64_t>(b);
  return a / b;
}

decimal_number decimal_of(const std::string& text) {
  decimal_number number;
  if (!read_exactly(text.c_str(), number)) throw std::runtime_error(text + ": not a decimal");
  return number;
}

}  // namespace

std::string decimal_scale::text_of(unsigned int number) const {
  return decimal_text(least + step * number, decimals);
}

double decimal_scale::position(const floored_decimal& number) const {
  constexpr double below = -0.5;
  constexpr double above = last_step + 1.0;
  if (number.floor < least) return below;
  const wide_integer distance = number.floor - least;
  const wide_integer steps = quotient(distance, step);
  if (steps > last_step) return above;
  const bool is_step = number.exact && steps * step == distance;
  return static_cast<double>(steps) + (is_step ? 0 : 0.5);
}

double decimal_scale::position(const decimal_number& number) const {
  return position(floor_at(number, decimals));
}

double decimal_scale::position(plain_number number) const {
  const auto digits = static_cast<wide_integer>(plain_digits(number));
  const unsigned int behind_point = plain_decimals(number);
  // No plain number has more than 17 digits, so that the product is at most 10^37.
  constexpr unsigned int most_zeros = most_scale_digits - 17;
  if (behind_point <= decimals && decimals - behind_point <= most_zeros)
    return position({digits * wide_powers_of_ten[decimals - behind_point], true});
  decimal_number same;
  read_decimal(tree::text_of(number).c_str(), same);
  return position(same);
}

bool decimal_scale::position(const char* text, double& position) const {
  decimal_number number;
  if (!read_exactly(text, number)) return false;
  position = this->position(number);
  return true;
}

bool is_sound(const decimal_scale& scale, unsigned int greatest_step) {
  const wide_integer end = wide_powers_of_ten[most_scale_digits];
  return scale.decimals <= most_scale_digits && scale.least > -end && scale.least < end &&
         scale.step > 0 && (end - 1 - scale.least) / scale.step >= greatest_step;
}

decimal_domain::decimal_domain(const decimal_scale& of_values, bool admits_null,
                               const std::string& null_text)
    : step_domain("uinteger", admits_null, null_text), scale_(of_values) {
  release_values_at_end();
}

decimal_domain::decimal_domain(const decimal_scale& of_values, o_set& steps)
    : decimal_domain(of_values, steps.admits_null(), steps.get_null()) {
  contains_null_ = steps.contains_null();
  strata::inpout::memory_device device;
  strata::inpout::obinstream out(device);
  steps.bin_out(out);
  strata::inpout::ibinstream in(device);
  bin_in(in);
}

// The text of a step for the functions of the base, which would take the null text for something
// else.
std::string decimal_domain::step_text(double step) const {
  const std::string text = std::to_string(static_cast<unsigned int>(step));
  return is_null(text.c_str()) ? "+" + text : text;
}

void decimal_domain::insert(const char* value) {
  if (is_null(value)) return step_domain::insert(value);
  const double step = scale_.position(decimal_of(value));
  if (step != std::floor(step) || step > last_step)
    throw std::runtime_error(std::string(value) + ": not a step of the decimals' scale");
  step_domain::insert(step_text(step).c_str());
}

bool decimal_domain::get_order(const char* value, unsigned int& code) {
  if (is_null(value)) return step_domain::get_order(value, code);
  const double step = scale_.position(decimal_of(value));
  if (step != std::floor(step) || step > last_step) return false;
  return step_domain::get_order(step_text(step).c_str(), code);
}

// Of a code that exists.
unsigned int decimal_domain::step_of(unsigned int code) {
  unsigned int step = 0;
  strata::util::string_util::str2int(step_domain::get_value(code).c_str(), step);
  return step;
}

std::string decimal_domain::get_value(unsigned int code) {
  return code == 0 || code > size_of_known() ? get_null() : scale_.text_of(step_of(code));
}

impls::o_set* decimal_domain::clone() {
  return new decimal_domain(scale_, *this);
}

int decimal_domain::leq(const std::string& a, const std::string& b) const {
  if (is_null(a.c_str()) || is_null(b.c_str())) return -1;
  const decimal_number right = decimal_of(b);
  return compare(decimal_of(a), right) > 0 ? 1 : 0;
}

int decimal_domain::leq(unsigned int code, const std::string& b) {
  if (code == 0 || is_null(b.c_str())) return -1;
  return step_of(code) > scale_.position(decimal_of(b)) ? 1 : 0;
}

std::string decimal_domain::find_mid(unsigned int low, unsigned int high) {
  return get_value(find_mid_code(low, high));
}

unsigned int decimal_domain::find_mid_code(unsigned int low, unsigned int high) {
  unsigned int step = 0;
  strata::util::string_util::str2int(step_domain::find_mid(low, high).c_str(), step);
  unsigned int code = 0;
  step_domain::get_order(step_text(step).c_str(), code);
  return code;
}

const decimal_scale* scale_of(const impls::column& column) {
  const auto* const domain = dynamic_cast<const decimal_domain*>(column.get_o_set());
  return domain == nullptr ? nullptr : &domain->scale();
}

std::string data_type_of(const impls::column& column) {
  return scale_of(column) != nullptr ? "decimal" : column.get_o_set()->get_datatype();
}

}  // namespace arbor::tree
