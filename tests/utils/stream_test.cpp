#include <gmock/gmock.h>

#include <new>

#include "arbor/model/column_bool.h"
#include "arbor/utils/block_transfer.h"
#include "arbor/utils/file_device.h"
#include "tests/support/devices.h"
#include "tests/support/temporary_file.h"

namespace arbor::tests {

using strata::inpout::file_device;
using strata::inpout::obinstream;
using mode = file_device::mode;

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

template <class T, class = void>
constexpr bool is_written = false;
template <class T>
constexpr bool
    is_written<T, std::void_t<decltype(std::declval<obinstream&>() << std::declval<T>())>> = true;
static_assert(is_written<char*> && is_written<o_set*> && is_written<impls::column_bool*>);
static_assert(!is_written<int*> && !is_written<volatile char*> && !is_written<int (*)()> &&
              !is_written<int (*)(int, ...)> && !is_written<int column::*>);

// The number of bytes of the first call for a block.
template <class T>
static unsigned int first_transfer(unsigned int count) {
  try {
    strata::inpout::transfer_block<T>(nullptr, count, [](T*, unsigned int size) { throw size; });
  } catch (unsigned int size) {
    return size;
  }
  return 0;
}

TEST(Stream, MovesABlockAtOnceUnlessItHasTwoGigabytes) {
  EXPECT_EQ(first_transfer<bool>(0x7FFFFFFE) + first_transfer<bool>(0x7FFFFFFF), 0x7FFFFFFFU);
  EXPECT_EQ(first_transfer<short>(0x3FFFFFFE) + first_transfer<short>(0x3FFFFFFF), 0x7FFFFFFEU);
  EXPECT_EQ(first_transfer<int>(0x1FFFFFFE) + first_transfer<int>(0x1FFFFFFF), 0x7FFFFFFCU);
  EXPECT_EQ(first_transfer<double>(0x0FFFFFFE) + first_transfer<double>(0x0FFFFFFF), 0x7FFFFFF8U);
}

TEST(Stream, MakesBoolsOfAnyBytesOfABlock) {
  call_log device(spelt("00018002"));
  bool bits[] = {true, true, false, false, true};
  device.in.read_block(bits, 4);
  device.out.write_block(bits, 4);
  EXPECT_NE(message_of([&] { device.in.read_block(bits, 5); }), "");
  device.out.write_block(bits, 5);
  EXPECT_EQ(device.medium.bytes(), spelt("00018002 00010101 0000000000"));
  EXPECT_EQ(device.calls, call_sizes({4, 4, 5, 5}));
}

TEST(Stream, RefusesALengthThatCannotBeBeforeItReadsOn) {
  call_log device(spelt("01 FFFFFF00 01 FFFFFFFF 6162")), endless(spelt("01 00000020"), false);
  std::vector<strata::data_types::datatype<unsigned int>> values, *list = &values;
  std::vector<strata::data_types::datatype<double>>* numbers = nullptr;
  char byte = 0, *text = &byte;
  EXPECT_TRUE(message_of([&] { device.in >> text; }) != "" &&
              message_of([&] { device.in >> list; }) != "");
  EXPECT_TRUE(device.calls == call_sizes({1, 4, 1, 4}) && text == nullptr && list == nullptr);
  if (sizeof(void*) != 4) return;  // the rest takes gigabytes where there is room for them
  EXPECT_THROW(endless.in >> numbers, std::bad_alloc);
  EXPECT_THROW(device.write(&byte, 0x80000000), std::bad_alloc);
}

TEST(FileDevice, NamesTheFileThatFailsAndKnowsWhatIsLeftAsLongAsTheSizeTells) {
  constexpr unsigned long long unknown = -1;
  char text[16] = "eleven byte";
  // What is left after `count` bytes were read, as far as there are any.
  const auto left = [&](auto&& device, unsigned int count) {
    message_of([&] { device.read(text, count); });
    return device.remaining();
  };
  const temporary_file file("older and longer"), none("");
  const std::string& path = file.path();
  file_device target(path, mode::write), full("/dev/full", mode::write);
  for (file_device* device : {&target, &full}) device->write(text, 11);
  target.close();
  EXPECT_EQ(message_of([&] { full.close(); }),
            "/dev/full: cannot be written: No space left on device");
  EXPECT_EQ(message_of([] { file_device("/none", mode::read); }),
            "/none: cannot be opened: No such file or directory");
  EXPECT_EQ(message_of([&] { file_device("/", mode::read).read(text, 3); }),
            "/: cannot be read: Is a directory");
  file_device whole(path, mode::read), growing(path, mode::read), shrunk(path, mode::read);
  EXPECT_EQ(left(whole, 4), 7U);
  EXPECT_EQ(message_of([&] { whole.read(text, 8); }), path + ": ends too early");
  EXPECT_EQ(whole.remaining() + left(file_device(none.path(), mode::read), 0), 0U);
  std::ofstream(path, std::ios::app) << ", more";
  for (const unsigned int count : {11U, 5U})
    EXPECT_EQ(left(growing, count), unknown) << "there is more";
  whole.read(text, 6);
  EXPECT_EQ(left(growing, 1) + whole.remaining(), 0U);
  std::ofstream(path, std::ios::trunc) << "x";
  EXPECT_EQ(left(shrunk, 2), 0U);
  for (const char* sizeless : {"/dev/zero", "/proc/stat"})
    EXPECT_EQ(left(file_device(sizeless, mode::read), 2), unknown);
}

}  // namespace arbor::tests
