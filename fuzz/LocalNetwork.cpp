// SPDX-License-Identifier: Apache-2.0

#include "fuzz/LocalNetwork.h"

#include <atomic>
#include <cerrno>
#include <dlfcn.h>
#include <netdb.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

namespace orlix::fuzz {

namespace {

std::atomic<std::uint16_t> everywhere = 0;

template <class Function>
Function* next(const char* name) {
  return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

}  // namespace

void leadEverywhereTo(std::uint16_t port) { everywhere = port; }

}  // namespace orlix::fuzz

extern "C" int connect(int socket, const sockaddr* address, socklen_t size) {
  static auto* const real = orlix::fuzz::next<int(int, const sockaddr*, socklen_t)>("connect");
  const bool network = address->sa_family == AF_INET || address->sa_family == AF_INET6;
  if (orlix::fuzz::everywhere == 0 || !network) {
    return real(socket, address, size);
  }
  if (address->sa_family == AF_INET6) {
    errno = ECONNREFUSED;
    return -1;
  }
  sockaddr_in here{};
  here.sin_family = AF_INET;
  here.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  here.sin_port = htons(orlix::fuzz::everywhere);
  return real(socket, reinterpret_cast<const sockaddr*>(&here), sizeof here);
}

extern "C" int getaddrinfo(const char* name, const char* service, const addrinfo* hints,
                           addrinfo** result) {
  static auto* const real =
      orlix::fuzz::next<int(const char*, const char*, const addrinfo*, addrinfo**)>("getaddrinfo");
  return real(orlix::fuzz::everywhere == 0 ? name : "127.0.0.1", service, hints, result);
}
