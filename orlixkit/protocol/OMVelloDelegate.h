// SPDX-License-Identifier: Apache-2.0

#pragma once

namespace orlix {

/// Receives the result of a start. Both on the main thread.
class OMVelloDelegate {
 public:
  virtual ~OMVelloDelegate() = default;
  virtual void velloNotActivated() = 0;
  virtual void velloSessionEstablished() = 0;
};

}  // namespace orlix
