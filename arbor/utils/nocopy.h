// An empty base class that prevents a class from being copied or moved.
//
//   class column : private strata::util::nocopy { ... };
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
