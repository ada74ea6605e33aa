// The record of a domain: whatever is accepted can be used and saved again.
#include <algorithm>

#include "tests/fuzz/fuzz.h"
#include "tests/support/devices.h"

using namespace arbor::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  const byte_list bytes(data, data + size);
  const domain_pointer domain = record_in<arbor::impls::o_set>(bytes);
  arbor::tests::call_log value_by_value(bytes);
  arbor::impls::o_set* second = nullptr;
  refusal([&] { value_by_value.in >> second; });
  const domain_pointer owner(second);
  check((second == nullptr) == (domain == nullptr), "a device does not decide whether a record is one");
  if (domain == nullptr) return 0;
  check(record_of(second) == record_of(domain.get()), "a device does not decide what a record tells");

  check_record(domain.get());
  const domain_pointer copy(domain->clone());
  check(record_of(copy.get()) == record_of(domain.get()), "a clone has the same record");
  const unsigned int known = domain->size_of_known();
  for (unsigned int code = 0; code <= known + 1; ++code) {
    const std::string text = domain->get_value(code);
    unsigned int found = 0;
    refusal([&] { check(!domain->get_order(text.c_str(), found) || found <= known, "a code found exists"); });
    refusal([&] { domain->find_mid(code, known - std::min(code, known)); });
    if (code <= known) refusal([&] { domain->leq(code, text); });
  }
  thaw(domain.get());  // and so puts the values in order
  check(domain->size_of_known() <= known, "an insertion of the unknown value adds no other");
  check_record(domain.get());
  return 0;
}
