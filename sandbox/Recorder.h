// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <fstream>
#include <mutex>
#include <string>
#include <vector>

#include "sandbox/Faults.h"
#include "sandbox/Http.h"

namespace orlix::sandbox {

/// Writes each exchange with a client to a file, one JSON object a line, so that requests and
/// answers can be held against the protocol's description (scripts/check-contract).
///
/// A secret is replaced by a text of the same form (each digit by 0, each letter by a or A), which
/// gives nothing away and still shows a value of the wrong form. Of a card number the first nine
/// digits stay: they decide what this server does.
///
/// Thread: any.
class Recorder {
 public:
  /// Appends to the file. Throws std::runtime_error when it cannot be written.
  explicit Recorder(std::string file);

  /// The answer as it is to leave, and the faults that the request met.
  void note(const HttpRequest& request, const HttpAnswer& answer, const std::vector<Fault>& faults);

  /// Where a server without a file of its own records: one for this process in the folder that the
  /// environment variable ORLIX_RECORD names, or nowhere. So the servers of a whole test run can be
  /// recorded.
  static std::string fileOfProcess();

 private:
  std::string name_;
  std::mutex mutex_;
  std::ofstream file_;
};

}  // namespace orlix::sandbox
