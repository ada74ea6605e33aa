#include "bench/agrawal.h"

#include <stdexcept>

namespace arbor::bench {

namespace {

bool within(int value, int low, int high) {
  return low <= value && value <= high;
}

// Of three consecutive age groups, the choice for this one.
template <class Choice>
Choice by_age(const person& p, Choice young, Choice middle, Choice old) {
  return p.age < 40 ? young : p.age < 60 ? middle : old;
}

struct bounds {
  int low;
  int high;
};

bool within(int value, const bounds& range) {
  return within(value, range.low, range.high);
}

bool has_income(const person& p, int income) {
  return within(income, by_age<bounds>(p, {50000, 100000}, {75000, 125000}, {25000, 75000}));
}

bool has_education(const person& p) {
  return within(p.education_level, by_age<bounds>(p, {0, 1}, {1, 3}, {2, 4}));
}

// What is left of the income, before the costs that a function adds.
double net_income(const person& p) {
  return 0.67 * (p.salary + p.commission);
}

bool in_first_group(const person& p, int function) {
  switch (function) {
    case 1:
      return p.age < 40 || p.age >= 60;
    case 2:
      return has_income(p, p.salary);
    case 3:
      return has_education(p);
    case 4:
      return within(p.salary,
                    has_education(p)
                        ? by_age<bounds>(p, {25000, 75000}, {50000, 100000}, {50000, 100000})
                        : by_age<bounds>(p, {50000, 100000}, {75000, 125000}, {25000, 75000}));
    case 5:
      return within(p.loan,
                    has_income(p, p.salary)
                        ? by_age<bounds>(p, {100000, 300000}, {200000, 400000}, {300000, 500000})
                        : by_age<bounds>(p, {200000, 400000}, {300000, 500000}, {100000, 300000}));
    case 6:
      return has_income(p, p.salary + p.commission);
    case 7:
      return net_income(p) - 0.2 * p.loan - 20000 > 0;
    case 8:
      return net_income(p) - 5000 * p.education_level - 20000 > 0;
    case 9:
      return net_income(p) - 5000 * p.education_level - 0.2 * p.loan - 10000 > 0;
    case 10: {
      const double equity = p.years_owned < 20 ? 0 : 0.1 * p.house_value * (p.years_owned - 20);
      return net_income(p) - 5000 * p.education_level + 0.2 * equity - 10000 > 0;
    }
    default:
      throw std::invalid_argument("the functions have the numbers 1 to 10");
  }
}

}  // namespace

// The distributions of the standard library differ from one implementation to the next; this one
// does not.
int agrawal::uniform(int low, int high) {
  return low + static_cast<int>(random() % static_cast<std::uint64_t>(high - low + 1));
}

person agrawal::next() {
  person p{};
  p.salary = uniform(20000, 150000);
  p.commission = p.salary >= 75000 ? 0 : uniform(10000, 75000);
  p.age = uniform(20, 80);
  p.education_level = uniform(0, 4);
  p.car = uniform(1, 20);
  p.zip_code = uniform(1, 9);
  p.house_value = (10 - p.zip_code) * uniform(50000, 150000);
  p.years_owned = uniform(1, 30);
  p.loan = uniform(0, 500000);
  const bool wrong = static_cast<double>(random() >> 11U) * 0x1p-53 < chosen.noise;
  p.group = in_first_group(p, chosen.function) != wrong ? 0 : 1;
  return p;
}

}  // namespace arbor::bench
