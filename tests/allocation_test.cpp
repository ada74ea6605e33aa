// When storage runs out, at whatever allocation: nothing is lost, and the call can be repeated.

#include "arbor/model/extract_rows.h"
#include "arbor/model/o_set_typed.h"
#include "arbor/utils/file_device.h"
#include "tests/support/allocations.h"
#include "tests/support/oracle.h"
#include "tests/support/temporary_file.h"

namespace arbor::tests {
namespace {

using strata::inpout::file_device;
using owned_column = std::unique_ptr<column>;
using owned_domain = std::unique_ptr<o_set>;

template <class Record>
std::string saved(const std::unique_ptr<Record>& record) {
  return record_of(record.get());
}

// A value of any data type; texts are too long to be stored within a std::string.
std::string value_of(const std::string& data_type, int number) {
  return (data_type == "string" ? "what is rather a long text, of the number " : "") +
         std::to_string(number);
}

owned_domain filled(const std::string& data_type, int values, bool unknown = true) {
  owned_domain domain = make_domain(data_type, unknown ? texts{"?"} : texts{});
  for (int i = values; i > 0; --i) domain->insert(value_of(data_type, i).c_str());
  return domain;
}

// One value after 255 makes the builder compact them, and one after 1050 needs more room; domains
// whose codes have been asked for have to be thawed.
TEST(AllocationFailure, LeavesADomainAsItWas) {
  for (const std::string& type : listed("integer,float,string,null")) {
    for (const int values : {3, 255, 256, 1050}) {
      for (const bool frozen : {false, true}) {
        const auto check = [&](auto act) {
          const auto make = [&] {
            owned_domain domain = filled(type, values);
            if (frozen) domain->size_of_known();
            return domain;
          };
          fail_each(type + std::to_string(values), make, act, saved<o_set>);
        };
        check([&](owned_domain& x) { return x->insert(value_of(type, 999).c_str()), ""; });
        check([&](owned_domain& x) { return x->insert("?"), ""; });
        check([](owned_domain& x) { return x->get_value(x->size_of_known()) + x->get_datatype(); });
        if (values > 3) continue;
        check([](owned_domain& x) { return saved(owned_domain(x->clone())); });
        check([](owned_domain& x) { return saved(x); });
        check([bytes = saved(filled(type, 3))](owned_domain&) {
          return saved(read_record<o_set>(bytes));
        });
      }
    }
  }
  using number = strata::data_types::datatype<int>;
  const auto insert = [](owned_domain& x) {
    static_cast<impls::o_set_typed<number>&>(*x).insert_values(std::vector<number>(400, 7));
    return "";
  };
  fail_each(
      "values", [] { return filled("integer", 3); }, insert, saved<o_set>);
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
    fail_each(std::string(typeid(Column).name()) + data_type, make, act, saved<column>);
  };
  const std::string one = value_of(data_type, 1);
  const w_sequence cases{{0, 1}, {1, 0.5F}, {2, 4}, {3, 8}};
  const std::vector<unsigned int> codes(100, 1);
  check([&](owned_column& x) { return x->push_back(one.c_str()), ""; });
  check([](owned_column& x) { return x->reserve(1000), ""; });
  check([&](owned_column& x) { return x->append_codes(codes.data(), 100), ""; });
  check([](owned_column& x) { return saved(owned_column(x->clone(false))); });
  check([](owned_column& x) { return saved(owned_column(x->clone(true))); });
  check([&](owned_column& x) { return saved(arbor::impls::extract_rows(*x, cases)); });
  check([](owned_column& x) {
    return saved(x) + x->get_row_value(1) + x->get_name() + x->get_type();
  });
  check([](owned_column& x) {
    strata::inpout::memory_device device({200, 0, 0, 0});
    device.write(std::vector<unsigned long long>(200, 0).data(), 1600);
    strata::inpout::ibinstream in(device);
    return x->bin_in(in), "";
  });
  struct parted {
    owned_column x;
    float share = untouched;
    strata::util::pair<unsigned int, unsigned int> range{untouched, untouched};
  };
  for (const unsigned int branch : {0U, 1U, 2U, 3U}) {
    const auto part = [&](parted& p) {
      const std::unique_ptr<w_sequence> cases_there(
          p.x->partition(cases.begin(), cases.end(), branch, 13.5F, p.share, p.range, {one, 2}));
      return std::to_string(cases_there->size());
    };
    fail_each(
        "partition", [&] { return parted{make()}; }, part,
        [](const parted& p) {
          return std::to_string(p.share) + " " + std::to_string(p.range.first + p.range.second);
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

using domain_or_column = std::pair<owned_domain, owned_column>;

TEST(AllocationFailure, LeavesTheDomainOfANewColumnToTheCaller) {
  for (const std::string& kind : listed("discrete,continuous,class,ignore,unheard of")) {
    for (const int values : {2, 300}) {
      const auto make = [&] { return domain_or_column(filled("integer", values, false), nullptr); };
      const auto act = [&](domain_or_column& x) {
        const char* const name = "a name of more than a few letters";
        std::string error;
        x.second.reset(column::NEW_COLUMN(x.first.get(), name, kind, error));
        if (x.second != nullptr) x.first.release();
        return error;
      };
      fail_each(kind, make, act, [](const domain_or_column& x) {
        return x.second == nullptr ? saved(x.first) : saved(x.second);
      });
    }
  }
}

TEST(AllocationFailure, GivesNoPartOfARecord) {
  for (const std::string& type : listed("integer,float,double,string,null")) {
    const owned_column x = make_column(type == "null" ? "ignore" : "discrete", type,
                                       {value_of(type, 1), value_of(type, 2)});
    const temporary_file file("");
    fail_each(type, [&] {
      file_device target(file.path(), file_device::mode::write);
      strata::inpout::obinstream out(target);
      out << static_cast<const column*>(x.get());
      target.close();
      file_device source(file.path(), file_device::mode::read);
      strata::inpout::ibinstream in(source);
      column* loaded = nullptr;
      in >> loaded;
      const owned_column from_file(loaded);
      return saved(from_file) + saved(read_record<column>(saved(x)));
    });
  }
  using split = column::partition_desc;
  fail_each(
      "split",
      [] {
        return split{"another threshold, of as many letters", 3};
      },
      [](split& x) {
        const std::string bytes = record_of(split{"a threshold of more than a few letters", 2});
        strata::inpout::memory_device device({bytes.begin(), bytes.end()});
        strata::inpout::ibinstream in(device);
        return in >> x, "";
      },
      [](const split& x) { return x.threshold + std::to_string(x.branches); });
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
      const auto make = [&] { return sequence_of(n); };
      const auto act = [&](w_sequence& cases) {
        return told(rate(measure, x, n, *classes, cases, copy));
      };
      const auto show = [&](w_sequence& cases) {
        if (!copy) cases = make();  // in another order sums are rounded differently
        return std::string(reinterpret_cast<const char*>(cases.data()),
                           cases.size() * sizeof cases[0]);
      };
      // Without storage for a table of logarithms they are computed one by one. A table, once made,
      // stays.
      w_sequence cases = make();
      fail(failing::nothrow_new);
      const std::string without_tables = act(cases);
      fail(failing::none);
      EXPECT_EQ(act(cases = make()), without_tables);
      fail_each("measure " + std::to_string(static_cast<int>(measure)), make, act, show);
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
