#include "orlixkit/platform/posix/CurlSockets.h"

#include <algorithm>
#include <cerrno>
#include <unistd.h>

#include <netinet/in.h>
#include <sys/socket.h>

namespace orlix {

namespace {

using NameOfEnd = int (*)(int, sockaddr*, socklen_t*);

int portOf(curl_socket_t socket, NameOfEnd end) {
  sockaddr_storage address{};
  socklen_t size = sizeof address;
  if (end(socket, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
    return 0;
  }
  return address.ss_family == AF_INET6
             ? ntohs(reinterpret_cast<const sockaddr_in6*>(&address)->sin6_port)
             : ntohs(reinterpret_cast<const sockaddr_in*>(&address)->sin_port);
}

}  // namespace

curl_socket_t CurlSockets::open(const curl_sockaddr& address) {
  const curl_socket_t made =
      ::socket(address.family, address.socktype | SOCK_CLOEXEC, address.protocol);
  if (made != CURL_SOCKET_BAD) {
    sockets_[made] = {};
  }
  return made;
}

int CurlSockets::onClose(void* self, curl_socket_t socket) {
  static_cast<CurlSockets*>(self)->sockets_.erase(socket);
  return ::close(socket);
}

bool CurlSockets::isIdle(int localPort, int serverPort) {
  const auto found = std::find_if(sockets_.begin(), sockets_.end(), [&](auto& entry) {
    auto& [socket, ports] = entry;
    if (ports.server == 0) {
      ports = {portOf(socket, ::getsockname), portOf(socket, ::getpeername)};
    }
    return ports.local == localPort && ports.server == serverPort;
  });
  char byte = 0;
  return found != sockets_.end() && ::recv(found->first, &byte, 1, MSG_PEEK | MSG_DONTWAIT) < 0 &&
         (errno == EAGAIN || errno == EWOULDBLOCK);
}

}  // namespace orlix
