// The record of a domain: whatever is accepted can be used and saved again.
#include "tests/fuzz/fuzz.h"

using namespace arbor::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  const auto domain = record_in<arbor::impls::o_set>({data, data + size});
  if (domain == nullptr) return 0;
  check_record(domain.get());
  const owner<arbor::impls::o_set> copy(domain->clone());
  check(record_of(copy.get()) == record_of(domain.get()), "a clone has the same record");
  const unsigned int known = domain->size_of_known();
  for (unsigned int code = 0; code <= known; ++code) {
    const std::string text = domain->get_value(code);
    unsigned int found = 0;
    refusal([&] {
      check(!domain->get_order(text.c_str(), found) || found <= known, "a code found exists");
    });
    refusal([&] { domain->find_mid(code, known - code); });
    refusal([&] { domain->leq(code, text); });
  }
  check_same(domain->get_value(known + 1), domain->get_null(), "the text of a code too high");
  thaw(domain.get());  // and so puts the values in order
  check(domain->size_of_known() <= known, "an insertion of the unknown value adds no other");
  check_record(domain.get());
  return 0;
}
