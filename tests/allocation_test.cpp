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
using strata::inpout::ibinstream;
using owned_column = std::unique_ptr<column>;
using owned_domain = std::unique_ptr<o_set>;

const char* const long_name = "a name of more than a few letters";

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
        const auto make = [&] {
          owned_domain domain = filled(type, values);
          if (frozen) domain->size_of_known();
          return domain;
        };
        const auto check = [&](auto act) {
          fail_each(type + std::to_string(values), make, act, saved<o_set>);
        };
        check([&](owned_domain& x) { return x->insert(value_of(type, 999).c_str()), ""; });
        check([&](owned_domain& x) { return x->insert("?"), ""; });
        check([](owned_domain& x) { return x->get_value(x->size_of_known()) + x->get_datatype(); });
        if (values == 3) check([](owned_domain& x) { return saved(owned_domain(x->clone())); });
      }
    }
  }
  using number = strata::data_types::datatype<int>;
  const auto make = [] { return filled("integer", 3); };
  const auto insert = [](owned_domain& x) {
    static_cast<impls::o_set_typed<number>&>(*x).insert_values(std::vector<number>(400, 7));
    return "";
  };
  fail_each("values", make, insert, saved<o_set>);
}

template <class Column>
void fail_in(const std::string& data_type, column::_type kind) {
  const std::string name = std::string(typeid(Column).name()) + data_type;
  const std::string one = value_of(data_type, 1);
  const w_sequence cases{{0, 1}, {1, 0.5F}, {2, 4}, {3, 8}};
  const std::vector<unsigned int> codes(100, 1);
  float share = 0;
  strata::util::pair<unsigned int, unsigned int> range{0, 0};
  const auto make = [&] {
    share = untouched;
    range = {untouched, untouched};
    owned_domain domain = filled(data_type, 2, kind != column::CLASS);
    auto result = std::make_unique<Column>(domain.get(), long_name, kind);
    domain.release();
    for (int i = 0; i < 64; ++i) result->push_back(value_of(data_type, 1 + i % 3 % 2).c_str());
    return owned_column(std::move(result));
  };
  const auto check = [&](auto act) { fail_each(name, make, act, saved<column>); };
  check([&](owned_column& x) { return x->push_back(one.c_str()), ""; });
  check([](owned_column& x) { return x->reserve(1000), ""; });
  check([&](owned_column& x) { return x->append_codes(codes.data(), 100), ""; });
  check([](owned_column& x) { return saved(owned_column(x->clone(false))); });
  check([](owned_column& x) { return saved(owned_column(x->clone(true))); });
  check([&](owned_column& x) { return saved(arbor::impls::extract_rows(*x, cases)); });
  check([](owned_column& x) {
    strata::inpout::memory_device device({200, 0, 0, 0});
    device.write(std::vector<unsigned long long>(200, 0).data(), 1600);
    ibinstream in(device);
    return x->bin_in(in), "";
  });
  for (const unsigned int branch : {0U, 1U, 2U, 3U}) {
    const auto part = [&](owned_column& x) {
      const std::unique_ptr<w_sequence> cases_there(
          x->partition(cases.begin(), cases.end(), branch, 13.5F, share, range, {one, 2}));
      return std::to_string(cases_there->size());
    };
    const auto show = [&](owned_column&) {
      return std::to_string(share) + " " + std::to_string(range.first + range.second);
    };
    fail_each(name, make, part, show);
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

TEST(AllocationFailure, LeavesTheDomainOfANewColumnToTheCaller) {
  using domain_or_column = std::pair<owned_domain, owned_column>;
  for (const std::string& kind : listed("discrete,continuous,class,ignore,unheard of")) {
    for (const int values : {2, 300}) {
      const auto make = [&] { return domain_or_column(filled("integer", values, false), nullptr); };
      const auto act = [&](domain_or_column& x) {
        std::string error;
        x.second.reset(column::NEW_COLUMN(x.first.get(), long_name, kind, error));
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
      ibinstream in(source);
      column* loaded = nullptr;
      in >> loaded;
      const owned_column from_file(loaded);
      return saved(from_file) + saved(read_record<column>(saved(x)));
    });
  }
  using split = column::partition_desc;
  const auto make = [] { return split{"another threshold, of as many letters", 3}; };
  const auto act = [](split& x) {
    const std::string bytes = record_of(split{long_name, 2});
    strata::inpout::memory_device device({bytes.begin(), bytes.end()});
    ibinstream in(device);
    return in >> x, "";
  };
  fail_each("split", make, act, record_of<split>);
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
  const auto x = code_column<T>(n, column::CONTINUOUS);
  const auto classes = class_column(n, sizeof(T) % 4);
  const auto make = [&] { return sequence_of(n); };
  for (const auto& [measure, copy] :
       {std::pair{by::value, true}, {by::sorting, true}, {by::sorting, false}, {by::table, true}}) {
    const auto act = [&, way = measure, copied = copy](w_sequence& cases) {
      if (!copied) cases = make();  // in another order sums are rounded differently
      return told(rate(way, *x, n, *classes, cases, copied));
    };
    // Without storage for a table of logarithms they are computed one by one. A table, once made,
    // stays.
    w_sequence cases = make();
    fail(failing::nothrow_new);
    const std::string without_tables = act(cases);
    fail(failing::none);
    EXPECT_EQ(act(cases), without_tables);
    const auto show = [copied = copy](const w_sequence& shown) {
      const std::size_t size = copied ? shown.size() * sizeof shown[0] : 0;
      return std::string(reinterpret_cast<const char*>(shown.data()), size);
    };
    fail_each("measure " + std::to_string(static_cast<int>(measure)), make, act, show);
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
      fail_each("bits", [&] {
        w_sequence cases = sequence_of(bits);
        return told(rate(*x, bits, *y, cases));
      });
    }
  }
}

}  // namespace
}  // namespace arbor::tests
