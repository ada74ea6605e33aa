// From text to codes: reading numbers, filling a domain, looking values up, appending rows. Most
// have no aim; the loops by hand show how much of the time the task itself takes.

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <random>
#include <vector>

#include "arbor/utils/number_text.h"
#include "arbor/utils/string_util.h"
#include "bench/benches.h"
#include "bench/comparison.h"

namespace arbor::bench {

namespace {

constexpr std::size_t cell_count = 1000000;

// Reading and comparing by hand: digits without a sign, what strtod makes of a text, and the text
// itself.
void read(const char* text, int& value) {
  value = 0;
  for (; *text >= '0' && *text <= '9'; ++text) value = 10 * value + (*text - '0');
}
void read(const char* text, float& value) {
  value = static_cast<float>(std::strtod(text, nullptr));
}
void read(const char* text, const char*& value) {
  value = text;
}

template <class Number>
bool less(Number a, Number b) {
  return a < b;
}
bool less(const char* a, const char* b) {
  return std::strcmp(a, b) < 0;
}

template <class T>
unsigned int bare_code(const std::vector<T>& sorted, const char* text) {
  T value;
  read(text, value);
  std::size_t low = 0;
  std::size_t high = sorted.size();
  while (low < high) {
    const std::size_t middle = (low + high) / 2;
    if (less(sorted[middle], value)) {
      low = middle + 1;
    } else {
      high = middle;
    }
  }
  return static_cast<unsigned int>(low) + 1;
}

template <class T>
std::vector<T> bare_domain(const std::vector<const char*>& texts) {
  std::vector<T> values(texts.size());
  for (std::size_t i = 0; i < texts.size(); ++i) read(texts[i], values[i]);
  std::sort(values.begin(), values.end(), [](T a, T b) { return less(a, b); });
  const auto equal = [](T a, T b) { return !less(a, b); };  // of two in order
  values.erase(std::unique(values.begin(), values.end(), equal), values.end());
  keep(values.data());
  return values;
}

// The cells of a column as a file would hold them: repeated texts, in no order, row after row.
struct cells {
  std::string data_type;
  std::vector<std::string> distinct;
  std::string characters = {};
  std::vector<const char*> texts = {};

  // Each text once, and then any of them.
  void draw() {
    std::mt19937_64 random(3);
    std::vector<std::size_t> drawn(cell_count);
    for (std::size_t i = 0; i < cell_count; ++i)
      drawn[i] = i < distinct.size() ? i : random() % distinct.size();
    std::shuffle(drawn.begin(), drawn.end(), random);
    for (const std::size_t i : drawn) characters += distinct[i] + '\0';
    for (const char* c = characters.data(); texts.size() < cell_count; c += std::strlen(c) + 1)
      texts.push_back(c);
  }

  std::unique_ptr<o_set> domain() const {
    std::unique_ptr<o_set> filled(o_set::NEW_O_SET(data_type, true, "?"));
    for (const char* text : texts) filled->insert(text);
    expect(filled->size_of_known() == distinct.size(), "the domain holds each text once");
    return filled;
  }
};

std::shared_ptr<const cells> make_cells(const std::string& data_type, std::size_t count) {
  const auto made = std::make_shared<cells>(cells{data_type, {}});
  for (std::size_t i = 0; i < count; ++i) {
    std::array<char, 32> text{};
    const char* const form = data_type == "string"    ? "value %02.0f"
                             : data_type == "integer" ? "%.0f"
                                                      : "%.3f";
    const double value = static_cast<double>(i) * (data_type == "float" ? 0.001 : 1);
    static_cast<void>(std::snprintf(text.data(), text.size(), form, value));
    made->distinct.emplace_back(text.data());
  }
  made->draw();
  return made;
}

template <class T>
void add(const std::string& data_type, unsigned int count) {
  const std::string name = "/" + with_thousands(count) + " values, " + data_type;
  const auto make = [=] { return make_cells(data_type, count); };

  compare("filling a domain : sorting read values" + name, {}, [=] {
    const auto source = make();
    expect(bare_domain<T>(source->texts).size() == source->distinct.size(),
           "each value is kept once");
    return comparison{cell_count, [=] { keep(source->domain().get()); },
                      [=] { bare_domain<T>(source->texts); }};
  });

  compare("looking texts up : reading and halving" + name, {}, [=] {
    const auto source = make();
    const std::shared_ptr<o_set> domain = source->domain();
    const auto sorted = std::make_shared<std::vector<T>>(bare_domain<T>(source->texts));
    for (const std::string& text : source->distinct) {
      unsigned int code = 0;
      expect(domain->get_order(text.c_str(), code) && code == bare_code(*sorted, text.c_str()),
             "the codes are equal");
    }
    const auto look_up = [=] {
      for (const char* text : source->texts) {
        unsigned int code = 0;
        domain->get_order(text, code);
        benchmark::DoNotOptimize(code);
      }
    };
    const auto by_hand = [=] {
      for (const char* text : source->texts) benchmark::DoNotOptimize(bare_code(*sorted, text));
    };
    return comparison{cell_count, look_up, by_hand};
  });

  compare("appending texts to a column : looking up and appending" + name, {}, [=] {
    const auto source = make();
    const auto sorted = std::make_shared<std::vector<T>>(bare_domain<T>(source->texts));
    const std::shared_ptr<column> pattern = make_column("ignore", data_type, source->distinct);
    const auto target = std::make_shared<std::unique_ptr<column>>();
    const auto append = [=] {
      for (const char* text : source->texts) (*target)->push_back(text);
      expect((*target)->size() == cell_count, "every text is a row");
    };
    const auto by_hand = [=] {
      with_codes(*pattern, [&](auto codes) {
        std::vector<std::remove_cv_t<std::remove_reference_t<decltype(codes[0])>>> appended;
        for (const char* text : source->texts) {
          appended.push_back(
              static_cast<typename decltype(appended)::value_type>(bare_code(*sorted, text)));
        }
        keep(appended.data());
      });
    };
    return comparison{cell_count, append, by_hand, [=] { target->reset(pattern->clone(true)); }};
  });
}

// The codes of a column of integers, in the order in which the values occur: a table of hashes, as
// small as one of these values can be.
std::vector<unsigned int> hashed_codes(const std::vector<const char*>& texts) {
  struct slot {
    int value;
    unsigned int code;  // 0: free
  };
  constexpr std::size_t slots = 1U << 18U;
  std::vector<slot> table(slots, slot{0, 0});
  std::vector<unsigned int> codes;
  codes.reserve(texts.size());
  unsigned int last = 0;
  for (const char* text : texts) {
    int value = 0;
    read(text, value);
    std::size_t i = (static_cast<unsigned int>(value) * 2654435769U) >> 14U;
    while (table[i].code != 0 && table[i].value != value) i = (i + 1) % slots;
    if (table[i].code == 0) table[i] = {value, ++last};
    codes.push_back(table[i].code);
  }
  keep(codes.data());
  return codes;
}

// A column as a program without the loader makes it: all texts inserted, then all appended.
void add_embedded() {
  compare("inserting and appending texts : hashing/130,000 values, integer", {aim::ratio, 12}, [] {
    const auto source = make_cells("integer", 130000);
    const auto make = [=] {
      std::string error;
      std::unique_ptr<o_set> domain = source->domain();
      const std::unique_ptr<column> made(
          column::NEW_COLUMN(domain.get(), "x", "continuous", error));
      expect(made != nullptr, "the column is made");
      domain.release();
      for (const char* text : source->texts) made->push_back(text);
      keep(made.get());
    };
    return comparison{cell_count, make, [=] { hashed_codes(source->texts); }};
  });
}

// The first question to a domain of values that came in no order.
void add_freeze() {
  constexpr unsigned int count = 100000;
  compare("freezing a domain : sorting/100,000 values, integer", {}, [=] {
    const auto source = std::make_shared<std::vector<std::string>>(integer_texts(count));
    std::shuffle(source->begin(), source->end(), std::mt19937_64(4));
    const auto domain = std::make_shared<std::unique_ptr<o_set>>();
    const auto numbers = std::make_shared<std::vector<int>>();
    for (const std::string& text : *source) read(text.c_str(), numbers->emplace_back());
    const auto fill = [=] {
      domain->reset(o_set::NEW_O_SET("integer", true, "?"));
      for (const std::string& text : *source) (*domain)->insert(text.c_str());
    };
    const auto freeze = [=] {
      expect((*domain)->size_of_known() == count, "all values are there");
    };
    const auto sort = [=] {
      std::vector<int> sorted = *numbers;
      std::sort(sorted.begin(), sorted.end());
      sorted.erase(std::unique(sorted.begin(), sorted.end()), sorted.end());
      keep(sorted.data());
    };
    return comparison{count, freeze, sort, fill};
  });
}

void add_reading() {
  compare("reading a number/integer : digits by hand", {}, [] {
    const auto source = make_cells("integer", 100000);
    const auto unit = [=] {
      for (const char* text : source->texts) {
        int value = 0;
        strata::util::string_util::str2int(text, value);
        benchmark::DoNotOptimize(value);
      }
    };
    const auto by_hand = [=] {
      for (const char* text : source->texts) {
        int value = 0;
        read(text, value);
        benchmark::DoNotOptimize(value);
      }
    };
    return comparison{cell_count, unit, by_hand};
  });
  compare("reading a number/float : std::from_chars", {}, [] {
    const auto source = make_cells("float", 100000);
    const auto unit = [=] {
      for (const char* text : source->texts) {
        double value = 0;
        expect(strata::util::read_number(text, value), "it is a number");
        benchmark::DoNotOptimize(value);
      }
    };
    const auto by_hand = [=] {
      for (const char* text : source->texts) {
        double value = 0;
        std::from_chars(text, text + std::strlen(text), value);
        benchmark::DoNotOptimize(value);
      }
    };
    return comparison{cell_count, unit, by_hand};
  });
}

}  // namespace

void add_text() {
  add_reading();
  add<const char*>("string", 20);
  add<int>("integer", 1000);
  add<float>("float", 100000);
  add_freeze();
  add_embedded();
}

}  // namespace arbor::bench
