// An empty base class: what derives from it can be neither copied nor moved.
#ifndef ARBOR_UTILS_NOCOPY_H
#define ARBOR_UTILS_NOCOPY_H

namespace strata::util {

class nocopy {
 public:
  nocopy(const nocopy&) = delete;
  nocopy& operator=(const nocopy&) = delete;

 protected:
  nocopy() = default;
  ~nocopy() = default;
};

}  // namespace strata::util

#endif
