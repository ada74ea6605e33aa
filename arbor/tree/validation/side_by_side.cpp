#include "arbor/tree/validation/side_by_side.h"

#include <mutex>
#include <vector>

#include "arbor/table/thread_pool.h"

namespace arbor::tree {

namespace {

// Adds up the progress of works done side by side.
class joint_progress {
 public:
  joint_progress(const std::function<void(double)>& of_all, std::size_t works)
      : report(of_all), shares(works, 0.0) {}

  // The progress of one work, in the form that grow_options takes.
  std::function<void(double)> of_work(std::size_t number) {
    if (!report) return {};
    return [this, number](double settled) { set(number, settled); };
  }

 private:
  void set(std::size_t number, double settled) {
    const std::lock_guard<std::mutex> lock(mutex);
    sum += settled - shares[number];
    shares[number] = settled;
    report(sum / static_cast<double>(shares.size()));
  }

  const std::function<void(double)>& report;
  std::mutex mutex;
  std::vector<double> shares;  // by work
  double sum = 0;
};

}  // namespace

void grow_side_by_side(const table& rows, const grow_options& options, std::size_t count,
                       const std::function<void(std::size_t, const grow_options&)>& work) {
  // A domain puts itself in order when it is first asked a question, which several threads could
  // not do at once.
  for (const auto& column : rows.columns) column->get_range();
  joint_progress progress(options.progress, count);
  thread_pool pool(options.threads == 0 ? machine_threads() : options.threads);
  pool.for_each(count, [&](std::size_t i) {
    grow_options own = options;
    own.threads = 1;
    own.progress = progress.of_work(i);
    work(i, own);
  });
}

}  // namespace arbor::tree
