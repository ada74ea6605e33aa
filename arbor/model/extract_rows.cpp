#include "arbor/model/extract_rows.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string>

#include "arbor/model/code_readers.h"

namespace arbor::impls {

namespace {

// A domain that has the values of another one, which it does not own. Borrowed from a borrowed one,
// it goes to the owner of the values itself.
class borrowed_domain : public o_set {
 public:
  explicit borrowed_domain(o_set& lender)
      : o_set(lender.get_datatype(), lender.admits_null(), lender.get_null()),
        source(owner_of(lender)) {
    contains_null_ = source.contains_null();
  }

  void insert(const char* /*value*/) override {
    throw std::runtime_error("a borrowed domain takes no values");
  }
  unsigned int size_of_known() override { return source.size_of_known(); }
  bool get_order(const char* value, unsigned int& code) override {
    return source.get_order(value, code);
  }
  std::string get_value(unsigned int code) override { return source.get_value(code); }
  o_set* clone() override { return source.clone(); }
  int leq(const std::string& a, const std::string& b) const override { return source.leq(a, b); }
  int leq(unsigned int code, const std::string& b) override { return source.leq(code, b); }
  std::string find_mid(unsigned int low, unsigned int high) override {
    return source.find_mid(low, high);
  }
  unsigned int find_mid_code(unsigned int low, unsigned int high) override {
    return source.find_mid_code(low, high);
  }
  strata::inpout::obinstream& bin_out(strata::inpout::obinstream& out) override {
    return source.bin_out(out);
  }

 private:
  static o_set& owner_of(o_set& lender) {
    auto* const borrowed = dynamic_cast<borrowed_domain*>(&lender);
    return borrowed == nullptr ? lender : borrowed->source;
  }

  o_set& source;
};

template <class Column>
std::unique_ptr<column> empty_like(const column& source) {
  column::_type kind = column::IGNORE;
  column::get_type(source.get_type(), kind);
  auto domain = std::make_unique<borrowed_domain>(*source.get_o_set());
  auto made = std::make_unique<Column>(domain.get(), source.get_name(), kind);
  domain.release();  // the column has adopted it
  return made;
}

std::unique_ptr<column> empty_column_like(const column& source) {
  const std::type_info& storage = typeid(source);
  if (storage == typeid(column_bool)) return empty_like<column_bool>(source);
  if (storage == typeid(column_typed<unsigned char>)) {
    return empty_like<column_typed<unsigned char>>(source);
  }
  if (storage == typeid(column_typed<unsigned short>)) {
    return empty_like<column_typed<unsigned short>>(source);
  }
  if (storage == typeid(column_typed<unsigned int>)) {
    return empty_like<column_typed<unsigned int>>(source);
  }
  if (storage == typeid(column_typed<unsigned long long>)) {
    return empty_like<column_typed<unsigned long long>>(source);
  }
  return empty_like<column>(source);
}

}  // namespace

std::unique_ptr<column> extract_rows(const column& source, const w_sequence& cases) {
  std::unique_ptr<column> extract = empty_column_like(source);
  extract->reserve(static_cast<unsigned int>(cases.size()));
  std::array<unsigned int, 1024> codes;  // NOLINT(cppcoreguidelines-pro-type-member-init)
  with_codes(source, [&](auto code_of) {
    for (std::size_t first = 0; first < cases.size(); first += codes.size()) {
      const std::size_t count = std::min(codes.size(), cases.size() - first);
      for (std::size_t i = 0; i < count; ++i) codes[i] = code_of(cases[first + i].first);
      extract->append_codes(codes.data(), static_cast<unsigned int>(count));
    }
  });
  return extract;
}

}  // namespace arbor::impls
