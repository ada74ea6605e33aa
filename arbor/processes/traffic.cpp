#include "arbor/processes/traffic.h"

#include <algorithm>
#include <ctime>

namespace arbor::tree {

namespace {

double processor_seconds() {
  timespec time{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

}  // namespace

traffic::traffic() : phases(1), entered(std::chrono::steady_clock::now()) {
  phases.front().phase = "start";
}

void traffic::enter(const std::string& phase) {
  take_time(phases[current]);
  entered = std::chrono::steady_clock::now();
  entered_processor_seconds = processor_seconds();
  const auto known = std::find_if(phases.begin(), phases.end(),
                                  [&](const phase_traffic& other) { return other.phase == phase; });
  current = static_cast<std::size_t>(known - phases.begin());
  if (known != phases.end()) return;
  phases.emplace_back();
  phases.back().phase = phase;
}

std::vector<phase_traffic> traffic::by_phase() const {
  std::vector<phase_traffic> result = phases;
  take_time(result[current]);
  return result;
}

void traffic::take_time(phase_traffic& phase) const {
  const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - entered;
  phase.seconds += passed.count();
  phase.processor_seconds += processor_seconds() - entered_processor_seconds;
}

}  // namespace arbor::tree
