#include <gmock/gmock.h>

#include <cstring>
#include <new>

#include "arbor/model/column_bool.h"
#include "arbor/utils/block_transfer.h"
#include "arbor/utils/file_device.h"
#include "tests/support/devices.h"
#include "tests/support/temporary_file.h"

namespace arbor::tests {

using strata::inpout::bindevice;
using strata::inpout::file_device;
using strata::inpout::ibinstream;
using strata::inpout::obinstream;

TEST(Stream, MovesPrimitivesAndTextsInCallsOfTheirLittleEndianBytes) {
  std::tuple<bool, bool, unsigned char, unsigned short, unsigned, unsigned long long, int, float,
             double>
      back, values(true, false, 0xA5, 0x1234, 0x89ABCDEF, 0x8123456789ABCDEF, -2, 1.5F, -2.5);
  const std::string numbers =
      "0100 A5 3412 EFCDAB89 EFCDAB8967452381 FEFFFFFF 0000C03F 00000000000004C0 ";
  std::string cut = "older";
  char zero[] = "abc\0d", *absent = cut.data(), *empty = nullptr;
  call_log device, source(spelt(numbers + "00 0200000000 FF03000000610062"));
  std::apply([&](auto... value) { (device.out << ... << value) << nullptr << zero + 3 << zero; },
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
static_assert(is_written<char*> && is_written<const char*> && is_written<o_set*> &&
              is_written<impls::column_bool*> && is_written<const column*>);
static_assert(!is_written<int*> && !is_written<const void*> && !is_written<const o_set*> &&
              !is_written<std::string*> && !is_written<volatile char*> && !is_written<int (*)()> &&
              !is_written<int (*)(int, ...)> && !is_written<int column::*>);

// The number of bytes of the first call for a block.
template <class T>
unsigned int first_transfer(unsigned int count) {
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
  struct : bindevice {
    void write(const void* /*data*/, unsigned int /*count*/) override {}
    void read(void* data, unsigned int count) override {
      std::memset(data, 2, count);
      throw std::runtime_error("broken");
    }
  } broken;
  call_log device(spelt("00018002"));
  bool bits[] = {true, true, false, false};
  device.in.read_block(bits, 4);
  device.out.write_block(bits, 4);
  EXPECT_EQ(device.medium.bytes(), spelt("00018002 00010101"));
  EXPECT_EQ(device.calls, call_sizes({4, 4}));
  EXPECT_EQ(message_of([&] { ibinstream(broken).read_block(bits, 4); }), "broken");
  EXPECT_EQ(std::memcmp(bits, "\0\0\0\0", 4), 0);
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

TEST(FileDevice, NamesTheFileThatFails) {
  const temporary_file file("older and longer");
  file_device target(file.path(), file_device::mode::write),
      full("/dev/full", file_device::mode::write), folder("/", file_device::mode::read);
  char text[] = "five";
  for (file_device* device : {&target, &full}) device->write(text, 5);
  target.close();
  file_device source(file.path(), file_device::mode::read);
  EXPECT_EQ(message_of([&] { source.read(text, 6); }), file.path() + ": ends too early");
  EXPECT_EQ(message_of([&] { folder.read(text, 3); }), "/: cannot be read: Is a directory");
  EXPECT_THAT(message_of([&] { full.close(); }), testing::HasSubstr("/dev/full"));
  EXPECT_THAT(message_of([] { file_device("/no/file", file_device::mode::read); }),
              testing::HasSubstr("/no/file"));
}

TEST(FileDevice, KnowsWhatIsLeftAsLongAsTheSizeTells) {
  struct reader : file_device {
    explicit reader(const std::string& path) : file_device(path, mode::read) {}
    // Reads `count` bytes as far as there are any.
    reader& after(unsigned int count) {
      message_of([&] { read(text, count); });
      return *this;
    }
    char text[16];
  };
  const temporary_file file("eleven byte"), none("");
  constexpr unsigned long long unknown = -1;
  reader whole(file.path()), growing(file.path()), shrunk(file.path());
  EXPECT_EQ(whole.after(4).remaining(), 7U);
  EXPECT_EQ(reader(file.path()).after(12).remaining(), 0U);
  EXPECT_EQ(reader(none.path()).remaining(), 0U);
  whole.after(8);
  std::ofstream(file.path(), std::ios::app) << ", more";
  for (const unsigned int count : {11U, 5U})
    EXPECT_EQ(growing.after(count).remaining(), unknown) << "there is more";
  EXPECT_TRUE(growing.after(1).remaining() == 0 && whole.after(6).text[5] == 'e');
  std::ofstream(file.path(), std::ios::trunc) << "x";
  EXPECT_EQ(shrunk.after(2).remaining() + whole.remaining(), 0U);
  for (const char* sizeless : {"/dev/zero", "/proc/stat"})
    EXPECT_EQ(reader(sizeless).after(2).remaining(), unknown);
}

}  // namespace arbor::tests
