// SPDX-License-Identifier: Apache-2.0

#include "bench/DelayingProxy.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <deque>
#include <list>
#include <poll.h>
#include <stdexcept>
#include <unistd.h>
#include <utility>
#include <vector>

#include <arpa/inet.h>
#include <netinet/tcp.h>
#include <sys/eventfd.h>
#include <sys/socket.h>

namespace orlix::bench {

namespace {

using Clock = std::chrono::steady_clock;

sockaddr_in loopback(int port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  return address;
}

/// One direction of a connection: what has been read and is not due yet. Empty bytes are the end.
struct Line {
  int from;
  int to;
  std::deque<std::pair<Clock::time_point, std::string>> pending = {};
  bool ended = false;  ///< of `from`
  bool closed = false;

  void read(std::chrono::milliseconds delay) {
    std::array<char, 16384> bytes{};
    const ssize_t count = ::recv(from, bytes.data(), bytes.size(), 0);
    ended = count <= 0;
    pending.emplace_back(Clock::now() + delay,
                         std::string(bytes.data(), ended ? 0 : static_cast<std::size_t>(count)));
  }
  void passOn() {
    while (!pending.empty() && pending.front().first <= Clock::now()) {
      const std::string bytes = std::move(pending.front().second);
      pending.pop_front();
      closed = bytes.empty();
      if (closed) {
        ::shutdown(to, SHUT_WR);
      } else {
        ::send(to, bytes.data(), bytes.size(), MSG_NOSIGNAL);  // blocks, as nothing here is large
      }
    }
  }
};

/// A connection's two ends, which are closed with it.
struct Connection {
  Connection(int client, int server) : there{client, server}, back{server, client} {
    const int on = 1;
    for (const int socket : {client, server}) {
      ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    }
  }
  ~Connection() {
    ::close(there.from);
    ::close(back.from);
  }
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  Line there;
  Line back;
};

int connectTo(int port) {
  const sockaddr_in address = loopback(port);
  const int made = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  ::connect(made, reinterpret_cast<const sockaddr*>(&address), sizeof address);
  return made;
}

/// Milliseconds until something is due, rounded up; -1 when nothing is pending.
int untilDue(const std::vector<Line*>& lines) {
  auto due = Clock::time_point::max();
  for (const Line* line : lines) {
    due = line->pending.empty() ? due : std::min(due, line->pending.front().first);
  }
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(due - Clock::now());
  return due == Clock::time_point::max() ? -1 : static_cast<int>(std::max<long>(0, left.count()));
}

}  // namespace

DelayingProxy::DelayingProxy(std::string base, std::chrono::milliseconds delay)
    : delay_(delay), base_(std::move(base)) {
  listener_ = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  stop_ = ::eventfd(0, EFD_CLOEXEC);
  sockaddr_in address = loopback(0);
  socklen_t size = sizeof address;
  auto* const generic = reinterpret_cast<sockaddr*>(&address);
  if (::bind(listener_, generic, size) != 0 || ::listen(listener_, 16) != 0 ||
      ::getsockname(listener_, generic, &size) != 0) {
    throw std::runtime_error("the proxy cannot listen");
  }
  const std::size_t colon = base_.rfind(':') + 1;
  const std::size_t length = base_.find('/', colon) - colon;
  const int server = std::stoi(base_.substr(colon, length));
  base_.replace(colon, length, std::to_string(ntohs(address.sin_port)));
  thread_ = std::thread([this, server] { run(server); });
}

DelayingProxy::~DelayingProxy() {
  const std::uint64_t one = 1;
  if (::write(stop_, &one, sizeof one) == sizeof one) {
    thread_.join();
  }
  ::close(listener_);
  ::close(stop_);
}

void DelayingProxy::run(int server) const {
  std::list<Connection> connections;
  for (;;) {
    std::vector<Line*> lines;
    std::vector<pollfd> watched{{stop_, POLLIN, 0}, {listener_, POLLIN, 0}};
    for (Connection& connection : connections) {
      for (Line* const line : {&connection.there, &connection.back}) {
        lines.push_back(line);
        watched.push_back({line->ended ? -1 : line->from, POLLIN, 0});
      }
    }
    ::poll(watched.data(), watched.size(), untilDue(lines));
    if (watched[0].revents != 0) {
      return;
    }
    for (std::size_t i = 0; i < lines.size(); ++i) {
      if (watched[i + 2].revents != 0) {
        lines[i]->read(delay_);
      }
      lines[i]->passOn();
    }
    std::erase_if(connections,
                  [](const Connection& one) { return one.there.closed && one.back.closed; });
    if (watched[1].revents != 0) {
      connections.emplace_back(::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC),
                               connectTo(server));
    }
  }
}

}  // namespace orlix::bench
