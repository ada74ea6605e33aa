// The record of a column: whatever is accepted can be used and saved again.
#include "arbor/model/extract_rows.h"
#include "tests/fuzz/fuzz.h"

using namespace arbor::fuzz;
using arbor::impls::column;

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  const auto accepted = record_in<column>({data, data + size});
  if (accepted == nullptr) return 0;
  check_record(accepted.get());
  const byte_list bytes = record_of(accepted.get());
  const owner<column> copy(accepted->clone(false)), part(accepted->clone(true));
  check(record_of(copy.get()) == bytes, "a clone has the same record");
  refusal([&] { accepted->find_threshold(1, accepted->get_distinct() - 1); });

  arbor::impls::w_sequence cases;
  std::vector<unsigned int> codes;
  for (unsigned int row = 0; row < accepted->size(); ++row) {
    accepted->get_row_value(row);
    check(!accepted->less_than(row, row), "no value comes before itself");
    cases.push_back({row, 1});
    codes.push_back(accepted->get_row_index(row));
  }
  refusal([&] {
    const auto extract = arbor::impls::extract_rows(*accepted, cases);
    check(record_of(extract.get()) == bytes, "an extract of all rows has the same record");
  });
  // Refuses codes that the domain has not.
  if (refusal([&] { part->append_codes(codes.data(), accepted->size()); }).empty()) {
    check(record_of(part.get()) == bytes, "codes make the same rows");
  }
  for (unsigned int branch = 0; branch < 4; ++branch) {
    float ratio = 0;
    strata::util::pair<unsigned int, unsigned int> range{0, 0};
    const column::partition_desc split{accepted->get_value(branch), 2};
    refusal([&] {
      delete accepted->partition(cases.begin(), cases.end(), branch, 9, ratio, range, split);
    });
  }
  return 0;
}
