// When storage runs out, in whatever place: nothing is lost, nothing is leaked, and what was asked
// can be asked again.

#include "arbor/model/extract_rows.h"
#include "arbor/model/o_set_typed.h"
#include "arbor/utils/file_device.h"
#include "arbor/utils/memory_device.h"
#include "tests/support/allocations.h"
#include "tests/support/oracle.h"
#include "tests/support/temporary_file.h"

namespace arbor::tests {
namespace {

using strata::inpout::file_device;
using strata::inpout::ibinstream;
using strata::inpout::memory_device;
using strata::inpout::obinstream;
using owned_column = std::unique_ptr<column>;
using owned_domain = std::unique_ptr<o_set>;

template <class Record>
std::string saved(const Record& record) {
  memory_device device;
  obinstream out(device);
  out << record;
  return {device.bytes().begin(), device.bytes().end()};
}
std::string saved(const owned_column& x) {
  return saved(static_cast<const column*>(x.get()));
}
std::string saved(const owned_domain& x) {
  return saved(x.get());
}

// Reads what `bytes` hold into `target`, which no failure sets.
template <class Target>
void reload(const std::string& bytes, Target*& target) {
  memory_device device({bytes.begin(), bytes.end()});
  ibinstream in(device);
  try {
    in >> target;
  } catch (...) {
    EXPECT_EQ(target, nullptr);
    throw;
  }
}

// A value of any data type; the texts are too long to be kept without storage of their own.
std::string value_of(const std::string& data_type, int number) {
  return (data_type == "string" ? "what is rather a long text, of the number " : "") +
         std::to_string(number);
}

owned_domain filled(const std::string& data_type, int values, bool unknown = true) {
  owned_domain domain = make_domain(data_type, unknown ? texts{"?"} : texts{});
  for (int i = values; i > 0; --i) domain->insert(value_of(data_type, i).c_str());
  return domain;
}

// Of 255 values, one more makes the builder compact them, and of 1050 its room is used up; domains
// that have been asked have to be thawed.
TEST(AllocationFailure, LeavesADomainAsItWas) {
  for (const std::string& type : listed("integer,float,string,null")) {
    for (const int values : {3, 255, 256, 1050}) {
      for (const bool asked : {false, true}) {
        const auto make = [&] {
          owned_domain domain = filled(type, values);
          if (asked) domain->size_of_known();
          return domain;
        };
        const auto check = [&](auto act) {
          fail_each(type + std::to_string(values), make, act,
                    [](const owned_domain& x) { return saved(x); });
        };
        check([&](owned_domain& x) { return x->insert(value_of(type, 999).c_str()), ""; });
        check([&](owned_domain& x) { return x->insert("?"), ""; });
        check([](const owned_domain& x) { return std::to_string(x->size_of_known()); });
        check([](const owned_domain& x) { return x->get_value(2) + x->get_datatype(); });
        if (values > 3) continue;
        check([](const owned_domain& x) { return saved(owned_domain(x->clone())); });
        check([](const owned_domain& x) { return saved(x); });
        check([bytes = saved(make())](owned_domain&) {
          o_set* loaded = nullptr;
          reload(bytes, loaded);
          return saved(owned_domain(loaded));
        });
      }
    }
  }
  fail_each(
      "values", [] { return filled("integer", 3); },
      [](owned_domain& x) {
        std::vector<strata::data_types::datatype<int>> more(400, 7);
        static_cast<impls::o_set_typed<strata::data_types::datatype<int>>&>(*x).insert_values(
            std::move(more));
        return "";
      },
      [](const owned_domain& x) { return saved(x); });
}

template <class Column>
owned_column with_rows(const std::string& data_type, column::_type kind) {
  owned_domain domain = filled(data_type, 2, kind != column::CLASS);
  auto result = std::make_unique<Column>(domain.get(), "a name of more than a few letters", kind);
  domain.release();
  for (int i = 0; i < 64; ++i) result->push_back(value_of(data_type, 1 + i % 3 % 2).c_str());
  return result;
}

template <class Column>
void fail_in(const std::string& data_type, column::_type kind) {
  const auto make = [&] { return with_rows<Column>(data_type, kind); };
  const auto check = [&](auto act) {
    fail_each(std::string(typeid(Column).name()) + data_type, make, act,
              [](const owned_column& x) { return saved(x); });
  };
  const std::string one = value_of(data_type, 1), bytes = saved(make());
  const w_sequence cases{{0, 1}, {1, 0.5F}, {2, 4}, {3, 8}};
  check([&](owned_column& x) { return x->push_back(one.c_str()), ""; });
  check([](const owned_column& x) { return x->reserve(1000), ""; });
  check([](const owned_column& x) {
    return x->append_codes(std::vector<unsigned int>(100, 1).data(), 100), "";
  });
  check([](const owned_column& x) { return saved(owned_column(x->clone(false))); });
  check([](const owned_column& x) { return saved(owned_column(x->clone(true))); });
  check([&](owned_column& x) { return saved(arbor::impls::extract_rows(*x, cases)); });
  check([](const owned_column& x) {
    return saved(x) + x->get_row_value(1) + x->get_name() + x->get_type();
  });
  check([&](owned_column& x) {
    memory_device device;
    obinstream out(device);
    ibinstream in(device);
    out << 200U;
    std::vector<unsigned long long> rows(200, 0);
    out.write_block(rows.data(), 200);
    return x->bin_in(in), "";
  });
  for (const unsigned int branch : {0U, 1U, 2U, 3U}) {
    check([&](owned_column& x) {
      float share = untouched;
      strata::util::pair<unsigned int, unsigned int> range{untouched, untouched};
      std::unique_ptr<w_sequence> parts;
      try {
        parts.reset(
            x->partition(cases.begin(), cases.end(), branch, 13.5F, share, range, {one, 2}));
      } catch (...) {
        EXPECT_TRUE(share == untouched && range.first == untouched && range.second == untouched);
        throw;
      }
      return std::to_string(parts->size()) + " " + std::to_string(share) + " " +
             std::to_string(range.second);
    });
  }
}

TEST(AllocationFailure, LeavesAColumnAsItWas) {
  for (const std::string& type : listed("integer,string")) {
    for (const auto kind : {column::DISCRETE, column::CLASS}) {
      fail_in<column_bool>(type, kind);
      fail_in<column_typed<unsigned char>>(type, kind);
    }
  }
  fail_in<column_typed<unsigned char>>("float", column::CONTINUOUS);
  fail_in<column_typed<unsigned short>>("float", column::CONTINUOUS);
  fail_in<column_typed<unsigned int>>("integer", column::CONTINUOUS);
  fail_in<column_typed<unsigned long long>>("string", column::DISCRETE);
}

struct domain_or_column {
  owned_domain domain;
  owned_column made;
};

TEST(AllocationFailure, LeavesTheDomainOfANewColumnToTheCaller) {
  for (const std::string& kind : listed("discrete,continuous,class,ignore,unheard of")) {
    for (const int values : {2, 300}) {
      const auto tell = [](const domain_or_column& x) {
        return x.made == nullptr ? saved(x.domain) : saved(x.made);
      };
      fail_each(
          kind,
          [&] {
            return domain_or_column{filled("integer", values, false), nullptr};
          },
          [&](domain_or_column& x) {
            std::string error;
            x.made.reset(column::NEW_COLUMN(x.domain.get(), "a name of more than a few letters",
                                            kind, error));
            if (x.made != nullptr) x.domain.release();
            return error;
          },
          tell);
    }
  }
}

TEST(AllocationFailure, GivesNoPartOfARecord) {
  for (const std::string& type : listed("integer,float,double,string,null")) {
    owned_column x = make_column(type == "null" ? "ignore" : "discrete", type,
                                 {value_of(type, 1), value_of(type, 2)});
    fail_each(type, [bytes = saved(x)] {
      column* loaded = nullptr;
      reload(bytes, loaded);
      return saved(owned_column(loaded));
    });
  }
}

TEST(AllocationFailure, LeavesADescribedSplitAsItWas) {
  column::partition_desc saved_one{"a threshold of more than a few letters", 2};
  fail_each(
      "split",
      [] {
        return column::partition_desc{"another threshold, of as many letters", 3};
      },
      [bytes = saved(saved_one)](column::partition_desc& split) {
        memory_device device({bytes.begin(), bytes.end()});
        ibinstream in(device);
        return in >> split, "";
      },
      [](const column::partition_desc& split) {
        return split.threshold + std::to_string(split.branches);
      });
}

TEST(AllocationFailure, ClosesAFile) {
  const temporary_file file("");
  fail_each(
      "file", [] { return with_rows<column_typed<unsigned char>>("string", column::CLASS); },
      [&](owned_column& x) {
        {
          file_device device(file.path(), file_device::mode::write);
          obinstream out(device);
          out << static_cast<const column*>(x.get());
          device.close();
        }
        file_device device(file.path(), file_device::mode::read);
        ibinstream in(device);
        column* loaded = nullptr;
        in >> loaded;
        return saved(owned_column(loaded));
      },
      [](const owned_column& x) { return saved(x); });
}

// Cases of one weight, of several, or of one until late; with codes that are dense or sparse.
node node_of(std::size_t cases, unsigned int width, unsigned int classes, int weights) {
  dice roll{cases + width + classes};
  std::vector<weighted_case> list(cases);
  for (std::size_t i = 0; i < cases; ++i) {
    const unsigned int code = roll(9) == 0 ? 0 : 1 + roll(width);
    const bool even = weights == 0 || (weights == 1 && i + 2 < cases);
    list[i] = {code, 1 + code * classes / (width + 1) % classes,
               even ? 1 : static_cast<float>(1 + roll(9)) / 7};
  }
  return node(list, classes);
}

template <class T>
void fail_in_measures(const node& n) {
  const auto owned = code_column<T>(n, column::CONTINUOUS);
  const column_typed<T>& x = *owned;
  const auto classes = class_column(n, sizeof(T) % 4);
  for (const by measure : {by::value, by::sorting, by::table}) {
    for (const bool copy : {true, false}) {
      if (!copy && measure != by::sorting) continue;
      // The logarithms are taken one by one when there is no storage for a table of them; then they
      // stay in tables.
      w_sequence ordered = sequence_of(n);
      allocations::fail(allocations::failing::not_throwing);
      const std::string without_tables = told(rate(measure, x, n, *classes, ordered, copy));
      allocations::stop_failing();
      EXPECT_EQ(told(rate(measure, x, n, *classes, ordered = sequence_of(n), copy)),
                without_tables);
      fail_each(
          "measure " + std::to_string(static_cast<int>(measure)), [&] { return sequence_of(n); },
          [&](w_sequence& cases) { return told(rate(measure, x, n, *classes, cases, copy)); },
          [&](w_sequence& cases) {
            if (!copy) cases = sequence_of(n);  // a new order is a new sum
            return std::string(reinterpret_cast<const char*>(cases.data()),
                               cases.size() * sizeof cases[0]);
          });
    }
  }
}

TEST(AllocationFailure, LeavesAMeasureRepeatable) {
  for (const unsigned int classes : {2U, 3U, 20U}) {
    for (const int weights : {0, 1, 2}) {
      fail_in_measures<unsigned char>(node_of(12, 4, classes, weights));
      fail_in_measures<unsigned char>(node_of(1500, 250, classes, weights));
      fail_in_measures<unsigned short>(node_of(300, 9000, classes, weights));
      const node bits = two_valued(node_of(200, 2, classes, weights));
      const auto x = bits_of(bits, column::DISCRETE), y = class_column(bits, 0);
      fail_each(
          "bits", [&] { return sequence_of(bits); },
          [&](w_sequence& cases) { return told(rate(*x, bits, *y, cases)); },
          [](w_sequence&) { return ""; });
    }
  }
}

}  // namespace
}  // namespace arbor::tests
