#pragma once

#include <atomic>

namespace orlix {

/// The life of one flow, from the entry call to its outcome or replacement, as its requests see it.
/// Shared by the flow and everything that runs for it.
///
/// Thread: any.
class Flow {
 public:
  bool isLive() const { return live_; }
  /// For good.
  void end() { live_ = false; }

 private:
  std::atomic<bool> live_{true};
};

}  // namespace orlix
