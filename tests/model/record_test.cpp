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
  for (const std::string row :
       {"continuous integer 7,?,-2 01 'integer 0101 '? 01 02000000 FEFFFFFF 07000000 | 'x "
        "'continuous 03000000 020001",
        "weights uinteger 4294967295,3 01 'uinteger 0100 '? 01 02000000 03000000 FFFFFFFF | 'x "
        "'weights 02000000 0201",
        "ignore float 2,?,1.5 010105000000666C6F6174 0101 '? 01020000000000C03F00000040 | 'x "
        "'ignore 03000000 020001",
        "class double 0.5 01 'double 0100 '? 01 01000000 000000000000E03F | 010100000078 'class "
        "01000000 01",
        "discrete string b,,b 01 'string 0100 '? 01 02000000 ' 'b | 'x 01080000006469736372657465 "
        "03000000 05000000",
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
  copied(make_column("continuous", "float", {}).get(),
         "01 01 'float 0100 '? 01 00000000 'x 'continuous 00000000");
  // A domain whose vector of values is absent.
  const auto domain = make_domain("integer", {});
  domain->bin_in(std::make_unique<call_log>(byte_list{0})->in);
  EXPECT_EQ(copied(domain.get(), "01 'integer 0100 '? 00")->get_value(1), "?");
}

TEST(Record, IsNoColumnWhereKindAndDomainDoNotGoTogether) {
  for (const auto& [record, message] : {std::pair{"01 00 'x 'class", "No set of values provided"},
                                        {"01 01 'string 0101 '? 01 01000000 'a 00 'class",
                                         "Class column '' does not admit unknown values"},
                                        {"01 01 'date 0101 '?", "invalid o_set type = date"}}) {
    call_log rows(spelt(record + std::string(" 01000000")));
    column older(nullptr, "", column::IGNORE), *target = &older;
    std::string error;
    EXPECT_EQ(message_of([&] { read_column(rows.in, target, error); }) + error, message);
    EXPECT_TRUE(target == nullptr && rows.remaining() == 4) << "the rows are left alone";
  }
}

// Rows of the codes 1 and `last`, read behind those that are there.
template <class T>
static void expect_codes(unsigned short high, const std::string& record) {
  const auto last = static_cast<T>(high);
  column_typed<T> c(numbers_to(high), "x", column::CONTINUOUS);
  for (const T code : {T{1}, last}) c.push_back(std::to_string(code).c_str());
  call_log device, endless(spelt("FFFFFFFF")), broken(spelt("02000000 01"), false);
  c.bin_out(device.out);
  c.bin_in(device.in);
  EXPECT_EQ(device.medium.bytes(), spelt("02000000" + record));
  EXPECT_EQ(device.calls, call_sizes({4, 2 * sizeof(T), 4, 2 * sizeof(T)}));
  for (call_log* bad : {&endless, &broken}) EXPECT_NE(message_of([&] { c.bin_in(bad->in); }), "");
  EXPECT_EQ(endless.calls, call_sizes({4}));
  EXPECT_EQ(c.codes(), std::vector<T>({1, last, 1, last}));
}

TEST(Record, HoldsTheCodesInTheirWidthAndIsReadBehindThoseThatAreThere) {
  expect_codes<unsigned char>(255, "01FF");
  expect_codes<unsigned short>(300, "01002C01");
  expect_codes<unsigned int>(300, "010000002C010000");
  expect_codes<unsigned long long>(300, "01000000000000002C01000000000000");
}

TEST(Record, HoldsBitsInWholeWordsAndIsReadInPlaceOfThoseThatAreThere) {
  const auto bits = make_column("discrete", "string", listed("b,a"));
  call_log none, some, words(spelt("21000000 00000080FFFFFFFF FFFFFFFF")),
      shorter(spelt("1F000000 00000000"));
  column_bool(numbers_to(2), "x", column::DISCRETE).bin_out(none.out);
  EXPECT_EQ(none.medium.bytes(), spelt("00000000"));
  EXPECT_EQ(none.calls, call_sizes({4, 0}));
  bits->bin_in(words.in);
  bits->push_back("a");
  EXPECT_NE(message_of([&] { bits->bin_in(words.in); }), "");
  EXPECT_EQ(words.calls, call_sizes({4, 8, 4}));
  bits->bin_out(some.out);
  EXPECT_EQ(some.medium.bytes(), spelt("22000000 00000080 01000000"));
  EXPECT_EQ(message_of([&] { bits->bin_in(shorter.in); }),
            "bitmap::resize cannot deal with shortening of bitmaps");
  bits->push_back("a");
  // No bit is written for the first value.
  EXPECT_TRUE(bits->size() == 32 && bits->get_row_index(31) == 2);
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
