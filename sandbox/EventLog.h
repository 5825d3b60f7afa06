// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <mutex>
#include <string>
#include <string_view>

#include "sandbox/Moment.h"

namespace orlix::sandbox {

/// The sandbox's account of what happens, one JSON object a line, for scripts to read.
///
/// Thread: every operation may be called from any thread; lines reach the sink one at a time.
class EventLog {
 public:
  using Sink = std::function<void(std::string_view line)>;

  /// `sink` gets each line without its line end. It must not call the log.
  explicit EventLog(Sink sink);

  struct Ready {
    std::string base;
    std::string local;       ///< Scheme, host and port by which this machine reaches all of it.
    std::string anchor;      ///< The root's file, DER.
    std::string anchorText;  ///< The same as PEM.
    std::string terms;
    std::string console;  ///< Empty when there is none.
  };

  void ready(const Ready& where);

  struct Request {
    std::string_view method;
    std::string_view path;
    int status = 0;             ///< 0 when the client was left without an answer on purpose.
    std::string_view reason{};  ///< Why it was refused; empty when it was not.
    Moment arrived{};
    std::chrono::milliseconds duration{};  ///< Until the answer was ready.
  };

  void request(const Request& request);

  void sms(std::string_view msisdn, std::string_view code);

 private:
  void write(std::string_view line);

  std::mutex mutex_;
  Sink sink_;
};

}  // namespace orlix::sandbox
