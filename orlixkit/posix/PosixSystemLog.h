// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

#include "orlixkit/ports/SystemLog.h"

namespace orlix {

enum class LogTarget { syslogAndStderr, stderrOnly, syslogOnly };

/// The system's log: syslog (facility user, level info, under the program's own name) and standard
/// error. Each message is one line, whatever it holds: control characters are escaped.
class PosixSystemLog : public SystemLog {
 public:
  explicit PosixSystemLog(LogTarget target) : target_(target) {}
  void write(std::string_view line) override;

  /// `text` with its control characters as `\n`, `\t`, `\r` or `\xNN`, so that no text can forge a
  /// log line or control the terminal that shows it.
  static std::string escaped(std::string_view text);

 private:
  LogTarget target_;
};

}  // namespace orlix
