// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <fstream>
#include <set>
#include <string>

#include <sys/types.h>

#include "orlixkit/ports/HttpClient.h"

namespace orlix::test {

/// Writes the requests of this process to a file, one JSON object a line, in the folder that the
/// environment variable ORLIX_RECORD names, for scripts/check-contract.
///
/// Requests that differ in digits only are written once and then counted: walks send millions of a
/// few forms. A forked child keeps a file of its own.
class RequestRecord {
 public:
  /// Does nothing when the variable is not set.
  static void note(const HttpRequest& request);

 private:
  explicit RequestRecord(std::string folder) : folder_(std::move(folder)) {}
  ~RequestRecord();

  void write(const HttpRequest& request);
  void writeLine(const std::string& line);

  std::string folder_;
  pid_t process_ = 0;
  std::ofstream file_;
  std::set<std::string> forms_;
  std::uint64_t repeated_ = 0;
};

}  // namespace orlix::test
