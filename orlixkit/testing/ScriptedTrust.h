// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <string>
#include <vector>

#include "orlixkit/ports/HttpClient.h"

namespace orlix {

/// A chain of certificates whose worth a test decides, and which remembers what it was judged by.
/// To be made with std::make_shared, so that the test can look at it afterwards.
class ScriptedTrust : public ServerTrust {
 public:
  /// Decides when `evaluate` is called; `error` is for the reason of a false. Passes by default.
  std::function<bool(const ScriptedTrust&, std::string& error)> verdict;
  /// True: the platform has no chain to show.
  bool missing = false;

  const std::vector<Bytes>& anchors() const { return anchors_; }
  bool anchorsOnly() const { return anchorsOnly_; }
  int evaluations() const { return evaluations_; }
  bool accepted() const { return accepted_; }
  void setAccepted(bool accepted) { accepted_ = accepted; }

  bool evaluate(const std::vector<Bytes>& anchors, bool anchorsOnly, std::string& error) override {
    anchors_ = anchors;
    anchorsOnly_ = anchorsOnly;
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
