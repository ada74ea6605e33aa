// The record of a split: it is read whole or not at all, and read back to the same bytes.
#include "tests/fuzz/fuzz.h"

using namespace arbor::fuzz;
using split_record = arbor::impls::column::partition_desc;

namespace {

byte_list saved(const split_record& split) {
  strata::inpout::memory_device device;
  strata::inpout::obinstream out(device);
  out << split;
  return device.bytes();
}

bool load(const byte_list& bytes, split_record& split) {
  strata::inpout::memory_device device(bytes);
  strata::inpout::ibinstream in(device);
  return refusal([&] { in >> split; }).empty();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  split_record split{"older", 7};
  if (!load({data, data + size}, split)) {
    check(split.threshold == "older" && split.branches == 7, "a split is read whole or not at all");
    return 0;
  }
  split_record again;
  check(load(saved(split), again) && saved(again) == saved(split), "a record is read back to the same bytes");
  check(again.threshold == split.threshold && again.branches == split.branches, "a split is read back");
  return 0;
}
