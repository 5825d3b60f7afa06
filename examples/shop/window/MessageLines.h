// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QByteArray>
#include <QSocketNotifier>
#include <functional>
#include <string>

namespace orlix::shop {

/// Lines of text that arrive in a file or a pipe while the application runs, such as the SMS of a
/// wallet server for development. Main thread, on its event loop.
class MessageLines {
 public:
  /// Throws UsageError when the file cannot be read.
  MessageLines(const std::string& file, std::function<void(const QString&)> heard);
  ~MessageLines();
  MessageLines(const MessageLines&) = delete;
  MessageLines& operator=(const MessageLines&) = delete;

 private:
  void read();

  const std::function<void(const QString&)> heard_;
  const int file_;
  QSocketNotifier arrival_;
  QByteArray begun_;  ///< of a line whose end is still to come
};

}  // namespace orlix::shop
