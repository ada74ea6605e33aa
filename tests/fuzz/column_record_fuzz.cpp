// The record of a column: whatever is accepted can be used and saved again.
#include <sstream>

#include "tests/fuzz/fuzz.h"

using namespace arbor::fuzz;
using arbor::impls::column;

namespace {

void use_rows(column& accepted) {
  arbor::impls::w_sequence cases;
  for (unsigned int row = 0; row < accepted.size(); ++row) {
    accepted.get_row_value(row);
    check(!accepted.less_than(row, row), "no value comes before itself");
    cases.push_back({row, 1});
  }
  const column_pointer part(accepted.clone(true));
  const std::unique_ptr<column> taken(accepted.extract(cases));
  check(record_of(taken.get()) == record_of(&accepted), "an extract of all has all");
  std::vector<unsigned int> codes;
  for (const auto& c : cases) codes.push_back(accepted.get_row_index(c.first));
  // Fails on codes that the domain has not.
  if (refusal([&] { part->append_codes(codes.data(), accepted.size()); }).empty()) {
    check(record_of(part.get()) == record_of(&accepted), "codes make the same rows");
  }
  for (unsigned int branch = 0; branch < 4; ++branch) {
    float ratio = 0;
    strata::util::pair<unsigned int, unsigned int> range{0, 0};
    column::partition_desc split{accepted.get_value(branch), 2};
    const auto total = static_cast<float>(cases.size());
    refusal([&] { delete accepted.partition(cases.begin(), cases.end(), branch, total, ratio, range, split); });
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  const column_pointer accepted = record_in<column>({data, data + size});
  if (accepted == nullptr) return 0;
  const byte_list bytes = record_of(accepted.get());
  const column_pointer again = record_in<column>(bytes);
  check(again != nullptr && record_of(again.get()) == bytes, "a record is read back to the same bytes");
  const column_pointer copy(accepted->clone(false));
  check(record_of(copy.get()) == bytes, "a clone has the same record");
  std::ostringstream xml;
  accepted->toXML(xml);
  check_same(accepted->get_name() + accepted->get_type(), again->get_name() + again->get_type(), "name and kind");
  refusal([&] { accepted->find_threshold(1, accepted->get_distinct() - 1); });
  use_rows(*accepted);
  return 0;
}
