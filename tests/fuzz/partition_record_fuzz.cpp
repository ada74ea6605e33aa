// The record of a split: it is read whole or not at all, and read back to the same bytes.
#include "tests/fuzz/fuzz.h"

using namespace arbor::fuzz;

static bool load(const byte_list& bytes, arbor::impls::column::partition_desc& split) {
  strata::inpout::memory_device device(bytes);
  strata::inpout::ibinstream in(device);
  return refusal([&] { in >> split; }).empty();
}

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  arbor::impls::column::partition_desc split{"older", 7}, again;
  if (load({data, data + size}, split)) {
    check(load(record_of(split), again) && record_of(again) == record_of(split),
          "a split is read back");
  } else {
    check_same(split.threshold + std::to_string(split.branches), "older7",
               "a split that was not read");
  }
  return 0;
}
