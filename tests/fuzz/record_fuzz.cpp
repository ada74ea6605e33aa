// An input is read as the record of a domain and as that of a column: whatever is accepted can be
// used and saved again.
#include "arbor/model/extract_rows.h"
#include "tests/fuzz/fuzz.h"

using namespace arbor::fuzz;

static void check_domain(const std::string& bytes) {
  const auto domain = accepted_record<o_set>(bytes);
  if (domain == nullptr) return;
  check_record(domain.get());
  check_same(record_of(owner<o_set>(domain->clone()).get()), record_of(domain.get()), "a clone");
  const unsigned int known = domain->size_of_known();
  for (unsigned int code = 0, found = 0; code <= known; ++code) {
    const std::string text = domain->get_value(code);
    message_of([&] { domain->get_order(text.c_str(), found), domain->leq(code, text); });
    check(found <= known, "a code found exists");
    message_of([&] { domain->find_mid(code, known - code); });
  }
  thaw(domain.get());  // sorts the values again
  check(domain->size_of_known() <= known, "an insertion of the unknown value adds no other");
  check_record(domain.get());
}

static void check_column(const std::string& bytes) {
  const auto accepted = accepted_record<column>(bytes);
  if (accepted == nullptr) return;
  check_record(accepted.get());
  const std::string whole = record_of(accepted.get());
  const owner<column> copy(accepted->clone(false)), part(accepted->clone(true));
  check_same(record_of(copy.get()), whole, "a clone");
  message_of([&] { accepted->find_threshold(1, accepted->get_distinct() - 1); });

  arbor::impls::w_sequence cases;
  std::vector<unsigned int> codes;
  for (unsigned int row = 0; row < accepted->size(); ++row) {
    check(!accepted->less_than(row, row), accepted->get_row_value(row) + " is not below itself");
    cases.push_back({row, 1});
    codes.push_back(accepted->get_row_index(row));
  }
  message_of([&] {
    const auto extract = arbor::impls::extract_rows(*accepted, cases);
    check_same(record_of(extract.get()), whole, "an extract of all rows");
  });
  if (message_of([&] { part->append_codes(codes.data(), accepted->size()); }).empty())
    check_same(record_of(part.get()), whole, "a column of the same codes");
  for (unsigned int branch = 0; branch < 4; ++branch) {
    float share = 0;
    strata::util::pair<unsigned int, unsigned int> range{0, 0};
    message_of([&] {
      delete accepted->partition(cases.begin(), cases.end(), branch, 9, share, range,
                                 {accepted->get_value(branch), 2});
    });
  }
}

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  check_domain({data, data + size});
  check_column({data, data + size});
  return 0;
}
