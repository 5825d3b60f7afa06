// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <atomic>

namespace orlix {

/// Whether a flow is still live, from the entry call to its outcome or replacement. Shared by the
/// flow and its requests and tasks.
///
/// Thread: any.
class Flow {
 public:
  bool isLive() const { return live_; }
  /// Irreversible.
  void end() { live_ = false; }

 private:
  std::atomic<bool> live_{true};
};

}  // namespace orlix
