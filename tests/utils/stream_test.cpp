#include <gmock/gmock.h>

#include "arbor/utils/file_device.h"
#include "tests/support/devices.h"
#include "tests/support/temporary_file.h"

namespace arbor::tests {

TEST(Stream, MovesPrimitivesAndTextsInCallsOfTheirLittleEndianBytes) {
  std::tuple<bool, bool, unsigned char, unsigned short, unsigned, unsigned long long, int, float,
             double>
      back, values(true, false, 0xA5, 0x1234, 0x89ABCDEF, 0x8123456789ABCDEF, -2, 1.5F, -2.5);
  const std::string numbers =
      "0100 A5 3412 EFCDAB89 EFCDAB8967452381 FEFFFFFF 0000C03F 00000000000004C0 ";
  std::string cut = "older";
  char zero[] = "abc\0d", *absent = cut.data(), *empty = nullptr;
  call_log device, source(spelt(numbers + "00 0200000000 FF03000000610062"));
  std::apply([&](auto... value) { (device.out << ... << value) << empty << zero + 3 << zero; },
             values);
  std::apply([&](auto&... value) { (source.in >> ... >> value) >> absent >> empty >> cut; }, back);
  EXPECT_EQ(device.medium.bytes(), spelt(numbers + "00 0100000000 0103000000616263"));
  EXPECT_EQ(device.calls, call_sizes({1, 1, 1, 2, 4, 8, 4, 4, 8, 1, 1, 4, 0, 1, 4, 3}));
  EXPECT_TRUE(back == values && absent == nullptr && source.calls == device.calls);
  EXPECT_EQ(cut + std::unique_ptr<char[]>(empty).get(), "a");
}

TEST(Stream, RefusesALengthThatCannotBeBeforeItReadsOn) {
  call_log device(spelt("01 FFFFFF00 01 FFFFFFFF 6162"));
  std::vector<strata::data_types::datatype<unsigned int>> values, *list = &values;
  char byte = 0, *text = &byte;
  EXPECT_TRUE(message_of([&] { device.in >> text; }) != "" &&
              message_of([&] { device.in >> list; }) != "");
  EXPECT_TRUE(device.calls == call_sizes({1, 4, 1, 4}) && text == nullptr && list == nullptr);
}

TEST(FileDevice, KnowsWhatIsLeftAndNamesTheFileThatFails) {
  using strata::inpout::file_device;
  const temporary_file file("older and longer");
  file_device target(file.path(), file_device::mode::write),
      full("/dev/full", file_device::mode::write);
  for (file_device* device : {&target, &full}) device->write("five", 5);
  target.close();
  file_device source(file.path(), file_device::mode::read);
  char text[] = "????";
  source.read(text, 3);
  EXPECT_EQ(text + std::to_string(source.remaining()), "fiv?2");
  EXPECT_EQ(message_of([&] { source.read(text, 3); }), file.path() + ": ends too early");
  file_device folder("/", file_device::mode::read);
  EXPECT_EQ(message_of([&] { folder.read(text, 3); }), "/: cannot be read: Is a directory");
  EXPECT_THAT(message_of([&] { full.close(); }), testing::HasSubstr("/dev/full"));
  EXPECT_THAT(message_of([] { file_device("/no/file", file_device::mode::read); }),
              testing::HasSubstr("/no/file"));
}

}  // namespace arbor::tests
