#include "arbor/model/o_set.h"

#include <gtest/gtest.h>

#include <array>
#include <climits>
#include <map>
#include <random>

#include "arbor/model/midpoint.h"
#include "tests/support/columns.h"

namespace arbor::tests {

// The code of a text; -1, with nothing written, when it has none.
static int code_of(o_set& domain, const std::string& text) {
  unsigned int code = UINT_MAX;
  const bool there = domain.get_order(text.c_str(), code);
  EXPECT_EQ(there, code != UINT_MAX) << text;
  return static_cast<int>(code);
}

TEST(Domain, IsMadeByTheExactNameOfItsDataTypeAndHoldsTheNullTextOnceInserted) {
  for (const std::string& name : listed("integer,uinteger,float,double,string,null")) {
    for (const std::string& unknown : listed("?,")) {
      std::unique_ptr<o_set> strict(o_set::NEW_O_SET(name, false, unknown)),
          domain(o_set::NEW_O_SET(name, true, unknown));
      EXPECT_EQ(message_of([&] { strict->insert(unknown.c_str()); }),
                "[o_set::insert()] called with unadmitted null value");
      EXPECT_FALSE(strict->contains_null() || strict->admits_null());
      EXPECT_EQ(code_of(*domain, unknown), -1);
      for (const std::string& text : {unknown, unknown, std::string("7")})
        domain->insert(text.c_str());
      domain.reset(std::unique_ptr<o_set>(domain->clone())->clone());
      EXPECT_EQ(
          domain->get_datatype() + domain->get_null() + domain->get_value(0) + domain->get_value(2),
          name + unknown + unknown + unknown);
      EXPECT_EQ(domain->is_dt_numeric(), name != "double" && name != "string" && name != "null");
      EXPECT_EQ(code_of(*domain, unknown), 0);
      EXPECT_EQ(code_of(*domain, "7"), domain->is_dt_null() ? -1 : 1);
      EXPECT_EQ(domain->leq("7", unknown) + domain->leq(unknown, "7") + domain->leq(0, "7") +
                    domain->leq(1, unknown),
                -4);
    }
  }
  EXPECT_EQ(message_of([] { make_domain("Integer", {}); }), "invalid o_set type = Integer");
}

TEST(Domain, NumbersRandomValuesInOrderAlsoWhenAskedInBetween) {
  std::mt19937 random(4);
  // How many different values, and their distance: multiples of 1339 meet in one slot of the cache.
  for (const auto& [different, distance] :
       {std::pair{50U, 1}, {3, 1339}, {3000, 1}, {2900, -2678}}) {
    for (const std::string& name : listed("integer,uinteger,float,double,string")) {
      std::map<int, std::string> model;  // texts in the order of their values
      const auto domain = make_domain(name, {"?"});
      for (int insertion = 1; insertion <= 4000; ++insertion) {
        const int drawn = static_cast<int>(random() % different);
        // Neighbours are not always at the same distance.
        const int number = drawn * (distance == 1 && drawn % 7 == 0 ? 300 : distance);
        model[number] = std::to_string(9000000 + number);
        domain->insert(model[number].c_str());
        if (insertion % 2000 != 0) continue;
        int code = 0;
        for (const auto& [value, text] : model) {
          ASSERT_EQ(code_of(*domain, text), ++code) << name;
          ASSERT_EQ(domain->get_value(static_cast<unsigned int>(code)), text);
        }
        EXPECT_EQ(domain->size_of_known(), model.size());
        for (const int between : {-4998999, 2, 450000})  // from 9000000 on
          EXPECT_EQ(code_of(*domain, std::to_string(9000000 + between)) > 0, model.count(between));
        EXPECT_EQ(code_of(*domain, "99999999"), -1);
      }
    }
  }
}

TEST(Domain, ReadsAndPrintsValuesByTheRulesOfItsDataType) {
  // A data type, what is inserted, and what is known then.
  for (const auto& [type, inserted, expected] :
       {std::array{"integer", "3, 1,-0,+3,0,-", "0;1;3;"},
        {"uinteger", "4294967295,2147483648,+", "0;2147483648;4294967295;"},
        {"float", "nan,-0,1e39,-1e39,1e-46,0,16777217", "-inf;-0;16777216;inf;nan;"},
        {"double", "nan,1.0,-1e400,1e3,0,-1e-320,1, 2.5,nan", "-inf;-0;0;1;2.5;1000;nan;nan;"},
        {"string", "b,a,,\xe9,a\x80,B,a", ";B;a;a\x80;b;\xe9;"}}) {
    const auto domain = make_domain(type, listed(inserted));
    std::string known;
    for (unsigned int code = 1; code <= domain->size_of_known(); ++code)
      known += domain->get_value(code) + ";";
    EXPECT_EQ(known, expected);
  }
  const auto numbers = make_domain("double", listed("nan,1,2,nan,3"));
  EXPECT_EQ(code_of(*numbers, "3") + code_of(*numbers, "nan"), 2) << "a NaN hides no other value";
  // Texts are sorted as unsigned bytes but searched as signed ones.
  EXPECT_EQ(code_of(*make_domain("string", listed("a,a\x80")), "a"), -1);
}

TEST(Domain, ComparesTextsAndCodesAndRefusesATextOfAnotherDataType) {
  // A data type, two values, and whether the first is greater.
  for (const std::string row :
       {"integer,4,5,0", "integer,9,5,1", "integer,10,9,1", "integer,9,9,0", "float,nan,1,0",
        "string,a,\xe9,1", "string,\xe9,a,0", "string,10,9,0", "string,b,a,1", "string,b,b,0"}) {
    const texts r = listed(row);
    const auto domain = make_domain(r[0], {r[1]});
    EXPECT_EQ(std::to_string(domain->leq(r[1], r[2])) + std::to_string(domain->leq(1, r[2])),
              r[3] + r[3])
        << row;
  }
  for (const std::string row : {"integer,1e3,: _not an int", "uinteger, ,: not an int",
                                "float,2.5 ,: not a float", "double,,: not a double"}) {
    const texts r = listed(row);
    const auto domain = make_domain(r[0], listed("4,9"));
    const char* const text = r[1].c_str();
    for (const auto& message :
         {message_of([&] { code_of(*domain, text); }), message_of([&] { domain->insert(text); }),
          message_of([&] { domain->leq(1, text); }), message_of([&] { domain->leq(text, "1"); }),
          message_of([&] { domain->leq("worse", text); })})
      EXPECT_EQ(message, text + r[2]);
    EXPECT_EQ(domain->size_of_known(), 2U);
  }
}

TEST(Domain, FindsTheLargestValueUpToTheMiddleOrSaysWhyNot) {
  const std::string none = "[o_set::find_threshold()] called for non-existing elements";
  // A data type, its values, and pairs of codes with their threshold or what the message ends in.
  for (const std::string row :
       {"integer -7,-2,4,10 1 4 -2 2 3 -2 1 2 -7 0 2 !0-2 9 0 !9-0 2 5 !1-4 3 2 !2-1",
        "integer -2147483647,-1,0,2147483647 1 4 0 2 4 0",
        "integer 2147483645,2147483646,2147483647 1 3 2147483646",
        "uinteger 4294967293,4294967294,4294967295 1 3 4294967294 3 3 4294967295",
        "float 1.0,2.5,6.0 1 3 2.5 2 2 2.5", "float 16777218,16777220 1 2 16777220",
        "float -3e38,0,3e38 1 3 0", "double -inf,5,inf 1 3 -inf 2 3 inf", "double 1,nan 1 2 1",
        "string a,b 0 1 !0-1 1 3 !0-2"}) {
    std::istringstream fields(row);
    std::string name, values, expected, result;
    fields >> name >> values;
    const auto domain = make_domain(name, listed(values));
    for (unsigned int low = 0, high = 0; fields >> low >> high >> expected;) {
      if (expected[0] == '!') expected.replace(0, 1, none + " ");
      const std::string refusal = message_of([&] {
        result = domain->find_mid(low, high);
        EXPECT_EQ(domain->get_value(domain->find_mid_code(low, high)), result);
      });
      EXPECT_EQ(refusal.empty() ? result : refusal, expected) << row;
    }
  }
  EXPECT_EQ(message_of([] { make_domain("null", {})->find_mid(1, 2); }), none);
  EXPECT_EQ(message_of([] { make_domain("string", listed("a,b"))->find_mid(1, 2); }),
            "mid_value() is undefined on type datatype_string");
  EXPECT_EQ(impls::midpoint(INT_MIN, INT_MAX), -1);
  EXPECT_EQ(impls::midpoint(INT_MIN, INT_MIN + 1), INT_MIN);
  EXPECT_EQ(impls::midpoint(INT_MIN, 1), -1073741824);
}

}  // namespace arbor::tests
