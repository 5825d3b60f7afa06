#pragma once

namespace orlix {

/// Hears how a start ends. Both on the main thread.
class OMVelloDelegate {
 public:
  virtual ~OMVelloDelegate() = default;
  virtual void velloNotActivated() = 0;
  virtual void velloSessionEstablished() = 0;
};

}  // namespace orlix
