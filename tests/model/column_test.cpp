#include "arbor/model/column.h"

#include <gtest/gtest.h>

#include <sstream>

#include "arbor/model/column_bool.h"
#include "arbor/model/column_typed.h"
#include "arbor/model/extract_rows.h"
#include "arbor/model/o_set_typed.h"
#include "tests/support/columns.h"

namespace arbor::tests {
namespace {

using impls::column_bool;
using impls::column_typed;
using code_list = std::vector<unsigned int>;

code_list codes_of(const column& c) {
  code_list codes;
  for (unsigned int row = 0; row < c.size(); ++row) codes.push_back(c.get_row_index(row));
  return codes;
}

std::unique_ptr<column> clone_of(column& c, bool empty) {
  return std::unique_ptr<column>(c.clone(empty));
}

std::string storage_of(const column* c) {
  if (dynamic_cast<const column_bool*>(c) != nullptr) return "bits";
  if (dynamic_cast<const column_typed<unsigned char>*>(c) != nullptr) return "1";
  if (dynamic_cast<const column_typed<unsigned short>*>(c) != nullptr) return "2";
  if (dynamic_cast<const column_typed<unsigned int>*>(c) != nullptr) return "4";
  return dynamic_cast<const column_typed<unsigned long long>*>(c) != nullptr ? "8" : "none";
}

TEST(Column, AppendsCodesThatItsDomainHasAndNoOthers) {
  // Values given as such count like texts, in any order and after those that are there.
  std::unique_ptr<o_set> domain = make_domain("integer", {"5"});
  EXPECT_EQ(domain->size_of_known(), 1U);
  dynamic_cast<impls::o_set_typed<strata::data_types::datatype<int>>&>(*domain).insert_values(
      {9, 5, 7});
  EXPECT_EQ(domain->get_value(2), "7");
  std::string error;
  const std::unique_ptr<column> sizes(
      column::NEW_COLUMN(domain.release(), "x", "continuous", error));
  const auto bits = make_column("discrete", "string", listed("b,a"));
  const auto unknowns = make_column("discrete", "string", listed("b,?"));
  for (column* c : {sizes.get(), bits.get(), unknowns.get()}) {
    const code_list before = codes_of(*c);
    const unsigned int known = c->get_distinct() - 1;
    const bool admits = c->get_o_set()->contains_null();
    for (const code_list& codes :
         {code_list{1, 0, 1}, code_list{1, known}, code_list{known + 1, 1}}) {
      const bool fit = codes[0] <= known && (codes[1] > 0 || admits);
      code_list expected = before;
      if (fit) expected.insert(expected.end(), codes.begin(), codes.end());
      const std::unique_ptr<column> target = clone_of(*c, true);
      target->append_codes(before.data(), static_cast<unsigned int>(before.size()));
      const auto append = [&] {
        target->append_codes(codes.data(), static_cast<unsigned int>(codes.size()));
      };
      EXPECT_EQ(message_of(append), fit ? "" : "column require a valid o_set");
      EXPECT_EQ(codes_of(*target), expected);
    }
  }
}

TEST(Column, KindsHaveExactTextsAndNumbers) {
  int number = 0;
  for (const std::string& text : listed("discrete,class,continuous,weights,ignore,unspecified")) {
    const column c(nullptr, "a name", static_cast<column::_type>(number));
    EXPECT_EQ(c.get_type() + " " + c.get_name(), text + " a name");
    EXPECT_EQ((std::vector{c.is_discrete(), c.is_class(), c.is_continuous(), c.is_weights(),
                           c.is_ignore()}),
              (std::vector{number == 0, number == 1, number == 2, number == 3, number == 4}));
    EXPECT_EQ(column::admits_null(text), text != "weights");
    auto kind = static_cast<column::_type>(9);
    EXPECT_FALSE(column::get_type(" " + text, kind) ||
                 column::get_type("D" + text.substr(1), kind) || kind != 9);
    EXPECT_EQ(column::get_type(text, kind), number < 5);
    EXPECT_EQ(kind, number < 5 ? number : 9);
    ++number;
  }
}

TEST(Column, TellsCodesAndTextsOfItsDomain) {
  const auto c = make_column("class", "string", listed("c,a,b")),
             none = make_column("class", "string", {});
  EXPECT_EQ(c->get_row_value(0) + c->get_value(2) + c->get_value(9), "cb?");
  EXPECT_EQ((code_list{c->get_index("b"), c->get_index("?"), c->get_index("d")}),
            code_list({2, 0, 0}));
  EXPECT_EQ((code_list{c->get_distinct(), c->get_range().first, c->get_range().second}),
            code_list({4, 1, 4}));
  EXPECT_EQ((code_list{none->get_distinct(), none->get_range().first, none->get_range().second}),
            code_list({1, 0, 0}));
}

TEST(Column, OfTheBaseClassHoldsNoRowsAndClonesItsDomain) {
  auto base = make_column("ignore", "null", listed("?,?"));
  const auto copy = clone_of(*base, false);
  EXPECT_EQ(base->size() + base->get_row_index(1) + (base->less_than(0, 1) ? 1 : 0), 0U);
  std::ostringstream out;
  base->toXML(out);
  EXPECT_EQ(out.str(), "<WARNING value=\"XML output not implemented\" />\n");
  base.reset();
  EXPECT_EQ(copy->get_type() + copy->get_name() + copy->get_o_set()->get_datatype(), "ignorexnull");
  EXPECT_TRUE(copy->get_o_set()->contains_null());
}

TEST(NewColumn, SaysWhyKindAndDomainDoNotGoTogetherAndLeavesTheDomain) {
  const std::string continuous = "Continuous column 'x' requires a numeric data type";
  const std::string weights = "Weights column 'x' requires a non-negative numeric data type";
  const std::string null_set = "Null set of column values can only be used for ignore column type";
  using row = std::vector<std::string>;  // kind, data type, values, message
  for (const row& r :
       {row{"Class", "null", "?", "Unknown column type: Class"},
        row{"continuous", "double", "1", continuous}, row{"continuous", "null", "?", continuous},
        row{"weights", "double", "1,?", weights}, row{"weights", "null", "?", weights},
        row{"class", "null", "a", null_set}, row{"discrete", "null", "?", null_set},
        row{"weights", "uinteger", "1,?", "Weights column 'x' does not admit unknown values"},
        row{"class", "null", "?", "Class column 'x' does not admit unknown values"}}) {
    const auto domain = make_domain(r[1], listed(r[2]));
    std::string error = "an older one";
    EXPECT_EQ(column::NEW_COLUMN(domain.get(), "x", r[0], error), nullptr);
    EXPECT_EQ(error + domain->get_datatype(), r[3] + r[1]);
    EXPECT_EQ(column::NEW_COLUMN(nullptr, "x", r[0], error), nullptr);
    EXPECT_EQ(error, "No set of values provided");
  }
}

TEST(NewColumn, TakesTheNarrowestStorageThatHoldsTheCodes) {
  // Kind, data type, how many known values, whether there is an unknown one, and the storage.
  for (const std::string row :
       {"discrete integer 0 0 bits", "discrete double 2 0 bits", "discrete integer 2 1 1",
        "discrete string 3 0 1", "continuous float 2 0 1", "class double 2 0 1",
        "ignore string 1 0 1", "weights integer 0 0 1", "ignore null 9 1 none",
        "discrete integer 254 1 1", "ignore integer 255 0 2", "continuous uinteger 65534 1 2",
        "discrete integer 65535 1 4"}) {
    std::istringstream fields(row);
    std::string kind, data_type, storage, error = "untouched";
    int known = 0, unknown = 0;
    fields >> kind >> data_type >> known >> unknown >> storage;
    auto domain = make_domain(data_type, texts(static_cast<std::size_t>(unknown), "?"));
    for (int i = 0; i < known; ++i) domain->insert(std::to_string(i).c_str());
    const std::unique_ptr<column> c(column::NEW_COLUMN(domain.get(), "x", kind, error));
    ASSERT_NE(c, nullptr) << error;
    EXPECT_EQ(c->get_o_set(), domain.release());
    EXPECT_EQ(storage_of(c.get()) + error, storage + "untouched") << row;
    EXPECT_EQ(c->get_type() + c->get_name() + std::to_string(c->size()), kind + "x0");
  }
}

template <class T>
class TypedColumn : public testing::Test {};
using widths = testing::Types<unsigned char, unsigned short, unsigned int, unsigned long long>;
TYPED_TEST_SUITE(TypedColumn, widths);

TYPED_TEST(TypedColumn, StoresComparesAndCopiesCodes) {
  auto domain = make_domain("integer", {"?"});
  for (int i = 1; i <= 255; ++i) domain->insert(std::to_string(i).c_str());
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
  EXPECT_EQ(codes_of(*source), code_list({255, 1, 0, 2, 2}));
  auto extract = arbor::impls::extract_rows(*source, {{4, 1}, {2, 1}, {0, 1}, {0, 1}});
  EXPECT_EQ(codes_of(*extract), code_list({2, 0, 255, 255}));
  EXPECT_EQ(extract->get_type() + extract->get_name() + extract->get_row_value(2),
            "continuousx255");
  extract.reset();
  source.reset();
  EXPECT_EQ(codes_of(*copy), code_list({255, 1, 0, 2, 1}));
  EXPECT_EQ(storage_of(empty.get()) + storage_of(copy.get()),
            std::to_string(sizeof(TypeParam) * 11));
  EXPECT_EQ(
      empty->get_type() + empty->get_name() + empty->get_value(3) + std::to_string(empty->size()),
      "continuousx30");
}

// A column that says that it has as many rows as can be counted.
struct full_column : column_typed<unsigned char> {
  full_column() : column_typed(make_domain("string", {"a"}).release(), "x", DISCRETE) {}
  unsigned int size() const override { return 4294967295U - room; }

  using column_typed::values;
  unsigned int room = 0;
};

TEST(Column, HasNoMoreRowsThanCanBeCounted) {
  full_column c;
  const unsigned int codes[] = {1, 1};
  EXPECT_EQ(message_of([&] { c.push_back("a"); }), "a column has at most 4294967295 rows");
  c.room = 1;
  EXPECT_EQ(message_of([&] { c.append_codes(codes, 2); }), "a column has at most 4294967295 rows");
  EXPECT_TRUE(c.values.empty());
  c.push_back("a");
  c.append_codes(codes, 1);
  EXPECT_EQ(c.values.size(), 2U);
}

TEST(BoolColumn, SharesItsBitsWithAFullCloneUntilOneOutgrowsThem) {
  auto source = make_column("discrete", "string", listed("b,a,b"));
  const auto copy = clone_of(*source, false), empty = clone_of(*source, true),
             heir = clone_of(*copy, false);
  EXPECT_EQ(codes_of(*arbor::impls::extract_rows(*source, {{2, 1}, {1, 1}})), code_list({2, 1}));
  source->push_back("b");
  EXPECT_EQ(copy->get_row_index(3), 2U) << "a bit written through one is read through the other";
  while (copy->size() < 40) copy->push_back("a");
  source->push_back("b");
  EXPECT_EQ(source->get_row_index(4) + copy->get_row_index(4), 2U + 1U);
  source.reset();
  EXPECT_EQ(codes_of(*heir), code_list({2, 1, 2}));
  EXPECT_EQ(storage_of(empty.get()) + std::to_string(empty->size()) + heir->get_row_value(0),
            "bits0b");
}

TEST(Splits, AreDescribedByTheThresholdOfAContinuousColumnOrTheNullText) {
  const auto sizes = make_column("continuous", "float", listed("1,2.5,6"));
  const auto colours = make_column("discrete", "integer", listed("7,8,9"));
  column::splitting_desc split;
  column::partition_desc target;
  const auto described = [&] { return target.threshold + " " + std::to_string(target.branches); };
  EXPECT_EQ(described() + std::to_string(split.gain + split.split_info), " 00.000000");
  split.branches = 3;
  split.split_column = colours.get();
  split.set_partition_desc(target);
  EXPECT_EQ(described(), "? 3");
  split.branches = 2;
  split.split_column = sizes.get();
  EXPECT_EQ(message_of([&] { split.set_partition_desc(target); }),
            "[o_set::find_threshold()] called for non-existing elements 0-0");
  EXPECT_EQ(described(), "? 3") << "changed by a split that was refused";
  split.low_code = 1;
  split.high_code = 3;
  split.set_partition_desc(target);
  EXPECT_EQ(described(), "2.5 2");
  target.reset();
  EXPECT_EQ(described(), " 0");
}

}  // namespace
}  // namespace arbor::tests
