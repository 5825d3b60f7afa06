// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/posix/CurlChannel.h"

#include <algorithm>
#include <cerrno>
#include <stdexcept>
#include <unistd.h>
#include <utility>

#include <sys/socket.h>

namespace orlix {

CurlChannel::CurlChannel(std::string origin)
    : origin_(std::move(origin)), multi_(curl_multi_init()) {
  if (!multi_) {
    throw std::runtime_error("libcurl: no multi handle");
  }
}

bool CurlChannel::isQuiet() const {
  return std::all_of(sockets_.begin(), sockets_.end(), [](curl_socket_t socket) {
    char byte = 0;
    return ::recv(socket, &byte, 1, MSG_PEEK | MSG_DONTWAIT) < 0 &&
           (errno == EAGAIN || errno == EWOULDBLOCK);
  });
}

curl_socket_t CurlChannel::open(const curl_sockaddr& address) {
  sockets_.reserve(sockets_.size() + 1);
  const curl_socket_t made =
      ::socket(address.family, address.socktype | SOCK_CLOEXEC, address.protocol);
  if (made != CURL_SOCKET_BAD) {
    sockets_.push_back(made);
  }
  return made;
}

int CurlChannel::onClose(void* self, curl_socket_t socket) {
  std::erase(static_cast<CurlChannel*>(self)->sockets_, socket);
  return ::close(socket);
}

}  // namespace orlix
