// What a process has sent to others, and how long that and its own work took, by phase.
#ifndef ARBOR_PROCESSES_TRAFFIC_H
#define ARBOR_PROCESSES_TRAFFIC_H

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace arbor::tree {

// Of a call that all processes take part in, what counts is what a process has to send if each
// value goes straight to where it is needed, and each sum is formed in parts, one in each process.
// The implementation of MPI may send more in fewer messages.
struct phase_traffic {
  std::string phase;
  double seconds = 0;            // that passed
  double processor_seconds = 0;  // of all threads
  std::uint64_t bytes = 0;       // sent to other processes
  std::uint64_t messages = 0;
};

class traffic {
 public:
  traffic();

  // What follows counts for this phase.
  void enter(const std::string& phase);

  void sent(std::uint64_t bytes, std::uint64_t messages = 1) {
    phases[current].bytes += bytes;
    phases[current].messages += messages;
  }

  // All phases so far, in the order in which they were first entered.
  std::vector<phase_traffic> by_phase() const;

 private:
  void take_time(phase_traffic& phase) const;

  std::vector<phase_traffic> phases;
  std::size_t current = 0;
  std::chrono::steady_clock::time_point entered;
  double entered_processor_seconds = 0;
};

}  // namespace arbor::tree

#endif
