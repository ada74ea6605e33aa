#include <gtest/gtest.h>

#include "tests/support/devices.h"
#include "tests/support/oracle.h"

namespace arbor::tests {

// Writes a record, reads it back and writes that; fails to read a part of it, be its size known or
// not.
template <class Record>
static std::unique_ptr<Record> copied(Record* original, const std::string& record) {
  const byte_list whole = spelt(record + " " + record);
  Record* target = nullptr;
  for (std::size_t i = 0; i < whole.size(); ++i) {
    call_log part(byte_list(whole.data(), whole.data() + i / 2), i % 2 == 0);
    target = original;
    EXPECT_TRUE(message_of([&] { part.in >> target; }) != "" && target == nullptr) << i / 2;
  }
  call_log device;
  device.out << original;
  device.in >> target;
  device.out << target;
  EXPECT_EQ(device.medium.bytes(), whole);
  return std::unique_ptr<Record>(target);
}

TEST(Record, HoldsADomainWithItsValuesAndAColumnWithItsRowsIfThereAreAny) {
  // Kind, data type, values, record of the domain | what follows it in that of the column.
  for (const std::string row : {"continuous integer 7,?,-2 01 'integer 0101 '? 01 02000000 "
                                "FEFFFFFF 07000000 | 'x 'continuous 03000000 020001",
                                "weights uinteger 4294967295,3 01 'uinteger 0100 '? 01 02000000 "
                                "03000000 FFFFFFFF | 'x 'weights 02000000 0201",
                                "ignore float 2,?,1.5 010105000000666C6F6174 0101 '? "
                                "01020000000000C03F00000040 | 'x 'ignore 03000000 020001",
                                "class double 0.5 01 'double 0100 '? 01 01000000 000000000000E03F "
                                "| 010100000078 'class 01000000 01",
                                "discrete string b,,b 01 'string 0100 '? 01 02000000 ' 'b | 'x "
                                "01080000006469736372657465 03000000 05000000",
                                "ignore null ?,? 01 'null 0101 '? | 'x 'ignore"}) {
    std::istringstream fields(row);
    std::string kind, type, values, domain, rest;
    std::getline(std::getline(fields >> kind >> type >> values, domain, '|'), rest);
    const auto c = make_column(kind, type, listed(values));
    copied(c.get(), "01" + domain + rest);
    const auto thawed = copied(c->get_o_set(), domain);
    thawed->insert("5");
    EXPECT_EQ(thawed->size_of_known(), c->get_o_set()->size_of_known() + (type == "null" ? 0 : 1));
  }
  copied<column>(nullptr, "00");
  copied(make_column("discrete", "float", {}).get(),
         "01 01 'float 0100 '? 01 00000000 'x 'discrete 00000000");
  const auto domain = make_domain("integer", {});
  domain->bin_in(std::make_unique<call_log>(byte_list{0})->in);
  EXPECT_EQ(copied(domain.get(), "01 'integer 0100 '? 00")->get_value(1), "?")
      << "without a vector of values";
}

TEST(Record, IsNoColumnWhereKindAndDomainDoNotGoTogether) {
  const std::string domain = "01 01 'string 0101 '? 01 01000000 'a ";
  for (const texts& row :
       {texts{"01 00 'x 'class", "No set of values provided"},
        texts{domain + "00 'class", "Class column '' does not admit unknown values"},
        texts{"01 01 'date 0101 '?", "invalid o_set type = date"}}) {
    call_log device(spelt(row[0] + " 01000000"));
    column older(nullptr, "", column::IGNORE), *target = &older;
    std::string error;
    EXPECT_EQ(message_of([&] { read_column(device.in, target, error); }) + error, row[1]);
    EXPECT_TRUE(target == nullptr && device.remaining() == 4) << "the rows are left alone";
  }
}

TEST(Record, IsReadBehindTheCodesThatAreThereButInPlaceOfBits) {
  column_typed<unsigned short> c(numbers_to(300), "x", column::CONTINUOUS);
  c.push_back("258");
  call_log device, endless(spelt("FFFFFFFF")), broken(spelt("02000000 010101"), false);
  c.bin_out(device.out);
  c.bin_in(device.in);
  for (call_log* bad : {&endless, &broken}) EXPECT_NE(message_of([&] { c.bin_in(bad->in); }), "");
  EXPECT_TRUE(device.medium.bytes() == spelt("01000000 0201") &&
              device.calls == call_sizes({4, 2, 4, 2}));
  EXPECT_TRUE(endless.calls == call_sizes({4}) &&
              c.codes() == std::vector<unsigned short>({258, 258}));

  const auto bits = make_column("discrete", "string", listed("b,a"));
  call_log words(spelt("21000000 00000080FFFFFFFF FFFFFFFF")), shorter(spelt("01000000 00000000"));
  bits->bin_in(words.in);
  bits->push_back("a");
  EXPECT_TRUE(message_of([&] { bits->bin_in(words.in); }) != "" &&
              words.calls == call_sizes({4, 8, 4}));
  for (unsigned int row = 0; row < 34; ++row)
    EXPECT_EQ(bits->get_row_index(row), row == 31 || row == 32 ? 2U : 1U);
  EXPECT_EQ(message_of([&] { bits->bin_in(shorter.in); }),
            "bitmap::resize cannot deal with shortening of bitmaps");
}

template <class T>
byte_list rows_of(const texts& rows) {
  column_typed<T> c(numbers_to(300), "x", column::CONTINUOUS);
  for (const std::string& row : rows) c.push_back(row.c_str());
  call_log device;
  c.bin_out(device.out);
  return device.medium.bytes();
}

TEST(Record, HoldsTheCodesInTheirWidthAndBitsInWholeWords) {
  EXPECT_EQ(rows_of<unsigned char>(listed("1,255")), spelt("02000000 01FF"));
  EXPECT_EQ(rows_of<unsigned short>(listed("1,300")), spelt("02000000 01002C01"));
  EXPECT_EQ(rows_of<unsigned int>(listed("1,300")), spelt("02000000 01000000 2C010000"));
  EXPECT_EQ(rows_of<unsigned long long>(listed("1,300")),
            spelt("02000000 0100000000000000 2C01000000000000"));
  EXPECT_EQ(rows_of<unsigned long long>({}), spelt("00000000"));
  column_bool bits(numbers_to(2), "x", column::DISCRETE);
  call_log none, some;
  bits.bin_out(none.out);
  for (int row = 0; row < 33; ++row) bits.push_back(row % 8 == 0 ? "2" : "1");
  bits.bin_out(some.out);
  EXPECT_EQ(none.medium.bytes(), spelt("00000000"));
  EXPECT_EQ(none.calls, call_sizes({4, 0}));
  EXPECT_EQ(some.medium.bytes(), spelt("21000000 01010101 01000000"));
}

TEST(Record, HoldsASplitAndIsReadWholeOrNotAtAll) {
  column::partition_desc split{std::string("2.5\0z", 5), 2};
  call_log device, broken(spelt("'3.5 0700"));
  device.out << split;
  EXPECT_TRUE(message_of([&] { broken.in >> split; }) != "" && split.threshold.size() == 5);
  device.in >> split;
  EXPECT_EQ(split.threshold + std::to_string(split.branches), "2.52");
  EXPECT_EQ(device.medium.bytes(), spelt("0103000000322E35 02000000"));
}

}  // namespace arbor::tests
