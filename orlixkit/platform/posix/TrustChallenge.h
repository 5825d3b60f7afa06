#pragma once

#include "orlixkit/platform/UrlConnection.h"
#include "orlixkit/platform/posix/SystemTrust.h"

namespace orlix {

/// The question about a server's chain as the delegate sees it. Lives while the delegate's callback
/// runs.
class TrustChallenge : public AuthenticationChallenge {
 public:
  explicit TrustChallenge(SystemTrust& trust) : trust_(trust) {}
  ServerTrust* serverTrust() override { return &trust_; }
  void useCredentialForTrust() override { accepted_ = true; }
  void cancel() override { accepted_ = false; }

  /// No answer is a refusal.
  bool isAccepted() const { return accepted_; }

 private:
  SystemTrust& trust_;
  bool accepted_ = false;
};

}  // namespace orlix
