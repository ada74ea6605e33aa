#include "arbor/model/o_set.h"

#include <cstring>
#include <stdexcept>

#include "arbor/model/o_set_typed.h"
#include "arbor/utils/text_storage.h"

namespace arbor::impls {

using strata::data_types::datatype;

o_set::o_set(const std::string& data_type, bool admits_null, const std::string& null_text)
    : admits_null_(admits_null), null_value(new char[null_text.size() + 1]), type_name(data_type) {
  std::memcpy(null_value.get(), null_text.c_str(), null_text.size() + 1);
}

o_set::~o_set() = default;

o_set* o_set::NEW_O_SET(const std::string& data_type, bool admits_null,
                        const std::string& null_text) {
  if (data_type == "integer")
    return new o_set_typed<datatype<int>>(data_type, admits_null, null_text);
  if (data_type == "float")
    return new o_set_typed<datatype<float>>(data_type, admits_null, null_text);
  if (data_type == "double")
    return new o_set_typed<datatype<double>>(data_type, admits_null, null_text);
  if (data_type == "string")
    return new o_set_typed<datatype<std::string>>(data_type, admits_null, null_text);
  if (data_type == "null") return new o_set(data_type, admits_null, null_text);
  if (data_type == "uinteger")
    return new o_set_typed<datatype<unsigned int>>(data_type, admits_null, null_text);
  throw std::runtime_error(strata::util::joined({"invalid o_set type = ", data_type}));
}

bool o_set::is_null(const char* value) const {
  const char* const null_text = null_value.get();
  return *value == *null_text && std::strcmp(value, null_text) == 0;
}

void o_set::insert_null() {
  if (!admits_null_)
    throw std::runtime_error("[o_set::insert()] called with unadmitted null value");
  contains_null_ = true;
}

void o_set::insert(const char* value) {
  if (is_null(value)) insert_null();
}

unsigned int o_set::size_of_known() {
  return 0;
}

bool o_set::get_order(const char* value, unsigned int& code) {
  if (!contains_null_ || !is_null(value)) return false;
  code = 0;
  return true;
}

std::string o_set::get_value(unsigned int /*code*/) {
  return null_value.get();
}

o_set* o_set::clone() {
  auto copy = std::make_unique<o_set>(type_name, admits_null_, null_value.get());
  copy->contains_null_ = contains_null_;
  return copy.release();
}

int o_set::leq(const std::string& /*a*/, const std::string& /*b*/) const {
  return -1;
}

int o_set::leq(unsigned int /*code*/, const std::string& /*b*/) {
  return -1;
}

std::string o_set::find_mid(unsigned int /*low*/, unsigned int /*high*/) {
  throw std::runtime_error("[o_set::find_threshold()] called for non-existing elements");
}

unsigned int o_set::find_mid_code(unsigned int low, unsigned int high) {
  unsigned int code = 0;
  get_order(find_mid(low, high).c_str(), code);
  return code;
}

bool o_set::is_dt_numeric() const {
  // Not "double", on purpose: no continuous and no weights column can have such a domain.
  return type_name == "integer" || type_name == "uinteger" || type_name == "float";
}

}  // namespace arbor::impls
