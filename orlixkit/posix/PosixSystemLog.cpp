// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/posix/PosixSystemLog.h"

#include <cerrno>
#include <syslog.h>
#include <unistd.h>

#include <fmt/format.h>

namespace orlix {

namespace {

/// One write, so that lines of several threads or processes do not interleave.
void writeToStderr(std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = ::write(STDERR_FILENO, text.data(), text.size());
    if (written < 0) {
      if (errno == EINTR) {
        continue;
      }
      return;  // a failure to log is ignored
    }
    text.remove_prefix(static_cast<std::size_t>(written));
  }
}

}  // namespace

std::string PosixSystemLog::escaped(std::string_view text) {
  std::string made;
  made.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto unit = static_cast<unsigned char>(text[i]);
    const auto next = static_cast<unsigned char>(i + 1 < text.size() ? text[i + 1] : 0);
    if (unit == '\n') {
      made += "\\n";
    } else if (unit == '\r') {
      made += "\\r";
    } else if (unit == '\t') {
      made += "\\t";
    } else if (unit < 0x20 || unit == 0x7F) {
      made += fmt::format("\\x{:02X}", unit);
    } else if (unit == 0xC2 && next >= 0x80 && next < 0xA0) {
      // U+0080 to U+009F: control characters that some terminals obey as well.
      made += fmt::format("\\x{:02X}", next);
      ++i;
    } else {
      made += text[i];
    }
  }
  return made;
}

void PosixSystemLog::write(std::string_view line) {
  std::string text = escaped(line);
  if (target_ != LogTarget::stderrOnly) {
    ::syslog(LOG_USER | LOG_INFO, "%s", text.c_str());
  }
  if (target_ != LogTarget::syslogOnly) {
    text += '\n';
    writeToStderr(text);
  }
}

}  // namespace orlix
