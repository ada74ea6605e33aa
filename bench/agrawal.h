// The synthetic table of R. Agrawal, T. Imielinski and A. Swami, "Database mining: a performance
// perspective", IEEE Transactions on Knowledge and Data Engineering 5 (1993), 914-925: nine
// attributes of a person who asks for a loan, and ten functions that assign one of two groups.
// SLIQ, SPRINT and RainForest were measured on it.
//
//   agrawal people({7, 0.05, 1});
//   const person next = people.next();  // next.group: by function 7, 5% are wrong
#ifndef ARBOR_BENCH_AGRAWAL_H
#define ARBOR_BENCH_AGRAWAL_H

#include <cstdint>
#include <random>

namespace arbor::bench {

struct person {
  int salary;           // 20000 to 150000
  int commission;       // 0 from a salary of 75000 on, else 10000 to 75000
  int age;              // 20 to 80
  int education_level;  // 0 to 4
  int car;              // its maker, 1 to 20
  int zip_code;         // 1 to 9
  int house_value;      // 50000 to 150000 times 10 less the zip code
  int years_owned;      // 1 to 30
  int loan;             // 0 to 500000
  int group;            // 0 for A, 1 for B
};

class agrawal {
 public:
  struct settings {
    int function;        // 1 to 10
    double noise;        // the share of people who are put into the other group, 0 to 1
    std::uint64_t seed;  // the same seed makes the same people
  };

  explicit agrawal(const settings& of_people) : chosen(of_people), random(of_people.seed) {}

  person next();

 private:
  int uniform(int low, int high);  // both included

  settings chosen;
  std::mt19937_64 random;
};

}  // namespace arbor::bench

#endif
