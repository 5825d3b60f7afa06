#pragma once

#include <functional>
#include <string>
#include <vector>

#include "orlixkit/platform/UrlConnection.h"

namespace orlix {

/// A chain of certificates whose worth a test decides, and which remembers what it was judged by.
/// To be made with std::make_shared, so that the test can look at it afterwards.
class ScriptedTrust : public ServerTrust {
 public:
  /// Decides when `evaluate` is called; `error` is for the reason of a false. Passes by default.
  std::function<bool(const ScriptedTrust&, std::string& error)> verdict;
  AuthenticationMethod method = AuthenticationMethod::serverTrust;
  /// True: the challenge comes without a chain.
  bool missing = false;

  const std::vector<Bytes>& anchors() const { return anchors_; }
  bool anchorsOnly() const { return anchorsOnly_; }
  int evaluations() const { return evaluations_; }
  bool accepted() const { return accepted_; }
  void setAccepted(bool accepted) { accepted_ = accepted; }

  void setAnchorCertificates(std::vector<Bytes> anchors) override { anchors_ = std::move(anchors); }
  void setAnchorCertificatesOnly(bool only) override { anchorsOnly_ = only; }
  bool evaluate(std::string& error) override {
    ++evaluations_;
    return !verdict || verdict(*this, error);
  }

 private:
  std::vector<Bytes> anchors_;
  bool anchorsOnly_ = true;
  int evaluations_ = 0;
  bool accepted_ = false;
};

}  // namespace orlix
