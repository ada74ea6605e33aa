#include "arbor/model/column.h"

#include <gmock/gmock.h>

#include "arbor/model/extract_rows.h"
#include "arbor/model/make_column.h"
#include "arbor/model/o_set_typed.h"
#include "tests/support/oracle.h"

namespace arbor::tests {
namespace {

// The codes of all rows, as "1 0 2 ".
std::string codes_of(const column& c) {
  std::string codes;
  for (unsigned int row = 0; row < c.size(); ++row)
    codes += std::to_string(c.get_row_index(row)) + " ";
  return codes;
}

std::unique_ptr<column> clone_of(column& c, bool empty) {
  return std::unique_ptr<column>(c.clone(empty));
}

std::string storage_of(const column& c) {
  if (typeid(c) == typeid(column_bool)) return "bits";
  if (typeid(c) == typeid(column_typed<unsigned char>)) return "1";
  if (typeid(c) == typeid(column_typed<unsigned short>)) return "2";
  if (typeid(c) == typeid(column_typed<unsigned int>)) return "4";
  return typeid(c) == typeid(column) ? "none" : "8";
}

TEST(Column, AppendsCodesThatItsDomainHasAndNoOthers) {
  struct {
    std::string kind, type, rows;
    std::vector<unsigned int> added;
    std::string after;
  } const table[] = {{"continuous", "integer", "9,5,7", {1, 0}, "3 1 2 "},
                     {"continuous", "integer", "9,5,7", {1, 3}, "3 1 2 1 3 "},
                     {"continuous", "integer", "9,5,7", {4, 1}, "3 1 2 "},
                     {"discrete", "string", "b,a", {1, 0}, "2 1 "},
                     {"discrete", "string", "b,a", {1, 2}, "2 1 1 2 "},
                     {"discrete", "string", "b,a", {3, 1}, "2 1 "},
                     {"discrete", "string", "b,?", {1, 0}, "1 0 1 0 "},
                     {"discrete", "string", "b,?", {2, 1}, "1 0 "}};
  for (const auto& row : table) {
    const auto c = make_column(row.kind, row.type, listed(row.rows));
    const bool fits = row.after != codes_of(*c);
    EXPECT_EQ(message_of([&] { c->append_codes(row.added.data(), 2); }),
              fits ? "" : "column require a valid o_set");
    EXPECT_EQ(codes_of(*c), row.after);
  }
}

TEST(Column, KindsHaveExactTextsAndNumbers) {
  int number = 0;
  for (const std::string& text : listed("discrete,class,continuous,weights,ignore,unspecified")) {
    const column c(nullptr, "a name", static_cast<column::_type>(number));
    EXPECT_EQ(c.get_type() + " " + c.get_name(), text + " a name");
    EXPECT_EQ(c.is_discrete() + 2 * c.is_class() + 4 * c.is_continuous() + 8 * c.is_weights() +
                  16 * c.is_ignore(),
              (1 << number) % 32);
    EXPECT_EQ(column::admits_null(text), text != "weights");
    auto kind = static_cast<column::_type>(9);
    EXPECT_FALSE(column::get_type(" " + text, kind) || column::get_type(text + "s", kind));
    EXPECT_EQ(column::get_type(text, kind), number < 5);
    EXPECT_EQ(kind, number < 5 ? number : 9);
    ++number;
  }
}

TEST(Column, AnswersFromItsDomain) {
  const auto c = make_column("class", "string", listed("c,a,b"));
  const auto none = make_column("class", "string", {});
  EXPECT_EQ(c->get_row_value(0) + c->get_value(2) + c->get_value(9), "cb?");
  EXPECT_EQ(c->get_index("b") * 100 + c->get_index("?") * 10 + c->get_index("d"), 200U);
  EXPECT_TRUE(c->get_distinct() == 4 && c->get_range().first == 1 && c->get_range().second == 4);
  EXPECT_TRUE(none->get_distinct() == 1 && none->get_range().second == 0);
  EXPECT_EQ(none->get_range().first, 0U);
}

TEST(Column, OfTheBaseClassHoldsNoRowsAndClonesItsDomain) {
  auto base = make_column("ignore", "null", listed("?,?"));
  const auto copy = clone_of(*base, false);
  std::ostringstream out;
  base->toXML(out << base->size() << base->get_row_index(1) << base->less_than(0, 1));
  EXPECT_EQ(out.str(), "000<WARNING value=\"XML output not implemented\" />\n");
  base.reset();
  EXPECT_EQ(copy->get_type() + copy->get_name() + copy->get_o_set()->get_datatype(), "ignorexnull");
  EXPECT_TRUE(copy->get_o_set()->contains_null());
}

TEST(NewColumn, TakesTheNarrowestStorageThatHoldsTheCodesOrSaysWhyThereIsNone) {
  const std::string unknowns = " column 'x' does not admit unknown values";
  const std::string of_null = "Null set of column values can only be used for ignore column type";
  const std::string weights = "Weights column 'x' requires a non-negative numeric data type";
  const std::string continuous = "Continuous column 'x' requires a numeric data type";
  // Kind, data type, how many known values, whether there is an unknown one, and the answer.
  const std::string lines =
      "discrete integer 0 0 bits,discrete double 2 0 bits,discrete integer 2 1 1,"
      "discrete string 3 0 1,continuous float 2 0 1,class double 2 0 1,ignore string 1 0 1,"
      "weights integer 0 0 1,ignore null 9 1 none,discrete integer 254 1 1,ignore integer 255 0 2,"
      "continuous uinteger 65534 1 2,discrete integer 65535 1 4,"
      "Class null 0 1 Unknown column type: Class,continuous double 1 0 " +
      continuous + ",continuous null 0 1 " + continuous + ",weights double 1 1 " + weights +
      ",weights null 0 1 " + weights + ",class null 1 0 " + of_null + ",discrete null 0 1 " +
      of_null + ",weights uinteger 1 1 Weights" + unknowns + ",class null 0 1 Class" + unknowns;
  for (const std::string& line : listed(lines)) {
    std::istringstream fields(line);
    std::string kind, data_type, answer, error;
    std::size_t known = 0, unknown = 0;
    std::getline(fields >> kind >> data_type >> known >> unknown >> std::ws, answer);
    auto domain = make_domain(data_type, texts(unknown, "?"));
    for (std::size_t i = 0; i < known; ++i) domain->insert(std::to_string(i).c_str());
    const std::unique_ptr<column> c(column::NEW_COLUMN(domain.get(), "x", kind, error));
    EXPECT_EQ(c == nullptr ? error : storage_of(*c) + error, answer) << line;
    EXPECT_EQ(domain->get_datatype(), data_type);
    if (c == nullptr) {
      EXPECT_THAT([&] { arbor::impls::make_column(std::move(domain), "x", kind); },
                  testing::ThrowsMessage<std::runtime_error>(answer));
      continue;
    }
    EXPECT_EQ(c->get_o_set(), domain.release());
    EXPECT_EQ(c->get_type() + c->get_name() + std::to_string(c->size()), kind + "x0");
  }
  std::string error;
  EXPECT_EQ(column::NEW_COLUMN(nullptr, "x", "ignore", error), nullptr);
  EXPECT_EQ(error, "No set of values provided");
}

template <class T>
class TypedColumn : public testing::Test {};
using widths = testing::Types<unsigned char, unsigned short, unsigned int, unsigned long long>;
TYPED_TEST_SUITE(TypedColumn, widths);

TYPED_TEST(TypedColumn, StoresComparesAndCopiesCodes) {
  // Values given as such count like texts, in any order and after those that are there.
  auto domain = make_domain("integer", listed("?,7"));
  EXPECT_EQ(domain->size_of_known(), 1U);
  std::vector<strata::data_types::datatype<int>> numbers;
  for (int i = 255; i > 0; --i) numbers.emplace_back(i);
  dynamic_cast<impls::o_set_typed<strata::data_types::datatype<int>>&>(*domain).insert_values(
      numbers);
  auto source =
      std::make_unique<column_typed<TypeParam>>(domain.release(), "x", column::CONTINUOUS);
  source->reserve(100);
  for (const char* text : {"255", "1", "?", "2"}) source->push_back(text);
  EXPECT_TRUE(source->less_than(1, 0) && source->less_than(2, 1));
  EXPECT_FALSE(source->less_than(0, 0) || source->less_than(0, 1));
  EXPECT_EQ(message_of([&] { source->push_back("256"); }), "column require a valid o_set");

  const auto copy = clone_of(*source, false), empty = clone_of(*source, true);
  copy->push_back("1");
  source->push_back("2");
  EXPECT_EQ(codes_of(*source), "255 1 0 2 2 ");
  auto extract = impls::extract_rows(*source, {{4, 1}, {2, 1}, {0, 1}, {0, 1}});
  EXPECT_EQ(codes_of(*extract), "2 0 255 255 ");
  EXPECT_EQ(extract->get_row_value(2), "255");
  const std::string storage = std::to_string(sizeof(TypeParam));
  for (const column* c : {extract.get(), copy.get(), empty.get()})
    EXPECT_EQ(storage_of(*c) + c->get_type() + c->get_name(), storage + "continuousx");
  extract.reset();
  source.reset();
  EXPECT_EQ(codes_of(*copy) + codes_of(*empty) + empty->get_value(3), "255 1 0 2 1 3");
}

// A column that claims to have nearly as many rows as can be counted.
struct full_column : open_column<unsigned char> {
  using open_column::open_column;
  unsigned int size() const override { return 4294967295U - room; }
  unsigned int room = 0;
};

TEST(Column, HasNoMoreRowsThanCanBeCounted) {
  full_column c(numbers_to(1), "x", column::DISCRETE);
  const unsigned int codes[] = {1, 1};
  const std::string full = "a column has at most 4294967295 rows";
  EXPECT_EQ(message_of([&] { c.push_back("1"); }), full);
  c.room = 1;
  EXPECT_EQ(message_of([&] { c.append_codes(codes, 2); }), full);
  EXPECT_TRUE(c.values.empty());
  c.push_back("1");
  c.append_codes(codes, 1);
  EXPECT_EQ(c.values.size(), 2U);
}

TEST(BoolColumn, SharesItsBitsWithAFullCloneUntilOneOutgrowsThem) {
  auto source = make_column("discrete", "string", listed("b,a,b"));
  const auto copy = clone_of(*source, false), empty = clone_of(*source, true),
             heir = clone_of(*copy, false);
  EXPECT_EQ(codes_of(*impls::extract_rows(*source, {{2, 1}, {1, 1}})), "2 1 ");
  source->push_back("b");
  EXPECT_EQ(copy->get_row_index(3), 2U) << "a bit written through one is read through the other";
  while (copy->size() < 40) copy->push_back("a");
  source->push_back("b");
  EXPECT_EQ(source->get_row_index(4) * 10 + copy->get_row_index(4), 21U);
  source.reset();
  EXPECT_EQ(codes_of(*heir) + heir->get_row_value(0), "2 1 2 b");
  EXPECT_EQ(storage_of(*empty) + codes_of(*empty), "bits");
}

TEST(Splits, AreDescribedByTheThresholdOfAContinuousColumnOrTheNullText) {
  const auto sizes = make_column("continuous", "float", listed("1,2.5,6"));
  const auto colours = make_column("discrete", "integer", listed("7,8,9"));
  column::partition_desc target;
  const auto described = [&] { return target.threshold + " " + std::to_string(target.branches); };
  EXPECT_EQ(described() + told({}), " 0" + told({0, 0, 0, nullptr, 0, 0}));
  // A split that is refused changes nothing.
  for (const auto& [split, expected] : {std::pair{rating{3, 0, 0, colours.get(), 0, 0}, "? 3"},
                                        {{2, 0, 0, sizes.get(), 0, 0}, "? 3"},
                                        {{2, 1, 3, sizes.get(), 0, 0}, "2.5 2"}}) {
    message_of([&, &split = split] { split.set_partition_desc(target); });
    EXPECT_EQ(described(), expected);
  }
  target.reset();
  EXPECT_EQ(described(), " 0");
}

}  // namespace
}  // namespace arbor::tests
