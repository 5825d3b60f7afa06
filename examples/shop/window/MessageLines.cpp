// SPDX-License-Identifier: Apache-2.0

#include "examples/shop/window/MessageLines.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

#include <sys/stat.h>

#include "examples/shop/ShopOptions.h"

namespace orlix::shop {

namespace {

int openLines(const std::string& file) {
  struct stat status {};
  const bool isPipe = stat(file.c_str(), &status) == 0 && S_ISFIFO(status.st_mode);
  // Writing as well: a pipe does not end while its other end is not open yet, or open no more.
  const int opened = open(file.c_str(), (isPipe ? O_RDWR : O_RDONLY) | O_NONBLOCK | O_CLOEXEC);
  if (opened < 0) {
    throw UsageError("--messages: " + file + " cannot be read: " + std::strerror(errno));
  }
  return opened;
}

}  // namespace

MessageLines::MessageLines(const std::string& file, std::function<void(const QString&)> heard)
    : heard_(std::move(heard)), file_(openLines(file)), arrival_(file_, QSocketNotifier::Read) {
  QObject::connect(&arrival_, &QSocketNotifier::activated, &arrival_, [this] { read(); });
}

MessageLines::~MessageLines() {
  arrival_.setEnabled(false);
  close(file_);
}

void MessageLines::read() {
  std::array<char, 4096> part{};
  const ssize_t count = ::read(file_, part.data(), part.size());
  if (count <= 0) {
    // A file has been read to its end; a pipe has nothing for the moment.
    arrival_.setEnabled(count < 0 && errno == EAGAIN);
    return;
  }
  begun_.append(part.data(), count);
  for (qsizetype end = begun_.indexOf('\n'); end >= 0; end = begun_.indexOf('\n')) {
    heard_(QString::fromUtf8(begun_.left(end)));
    begun_.remove(0, end + 1);
  }
}

}  // namespace orlix::shop
