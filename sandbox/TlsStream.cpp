#include "sandbox/TlsStream.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <poll.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <openssl/err.h>
#include <sys/socket.h>

namespace orlix::sandbox {

namespace {

bool readableWithin(int socket, std::chrono::milliseconds time) {
  pollfd watched{.fd = socket, .events = POLLIN, .revents = 0};
  int ready = 0;
  do {
    ready = poll(&watched, 1, static_cast<int>(time.count()));
  } while (ready < 0 && errno == EINTR);
  return ready > 0;
}

void describe(const sockaddr_in& address, std::string& ip, int& port) {
  std::array<char, INET_ADDRSTRLEN> text{};
  if (address.sin_family != AF_INET) return;
  if (inet_ntop(AF_INET, &address.sin_addr, text.data(), text.size()) != nullptr) ip = text.data();
  port = ntohs(address.sin_port);
}

}  // namespace

TlsStream::TlsStream(int socket, SSL_CTX* context)
    : socket_(socket), ssl_(SSL_new(context), &SSL_free) {
  if (ssl_) SSL_set_fd(ssl_.get(), socket);
}

TlsStream::~TlsStream() { ERR_clear_error(); }

bool TlsStream::handshake() { return ssl_ && SSL_accept(ssl_.get()) == 1; }

bool TlsStream::resumed() const { return SSL_session_reused(ssl_.get()) == 1; }

bool TlsStream::awaitRequest(std::chrono::milliseconds idle) {
  if (consumed_ < incoming_.size() || SSL_pending(ssl_.get()) > 0) return true;
  if (!readableWithin(socket_, idle)) return false;
  char first = 0;
  return SSL_peek(ssl_.get(), &first, 1) == 1;
}

bool TlsStream::send(const char* bytes, size_t size) {
  size_t done = 0;
  while (done < size) {
    size_t written = 0;
    if (SSL_write_ex(ssl_.get(), bytes + done, size - done, &written) != 1) return false;
    done += written;
  }
  return true;
}

bool TlsStream::waitUntilClientLeaves(Shutdown& shutdown) {
  while (!shutdown.begun()) {
    // The server's end shuts the socket, which wakes this as the client's leaving does.
    if (readableWithin(socket_, std::chrono::minutes(10))) return false;
  }
  return false;
}

bool TlsStream::deliver(HttpAnswer answer, Shutdown& shutdown) {
  std::string out;
  out.swap(outgoing_);
  if (answer.delay.count() > 0 && !shutdown.pause(answer.delay)) return false;
  if (answer.hold && !answer.hold()) return false;

  const size_t headEnd = out.find("\r\n\r\n");
  const size_t head = headEnd == std::string::npos ? out.size() : headEnd + 4;
  switch (answer.delivery) {
    case Delivery::whole:
      answer.underWay.reset();  // Having the answer, the client may send its next request at once.
      return out.empty() || send(out.data(), out.size());
    case Delivery::hangUp:
      return false;
    case Delivery::silence:
      return waitUntilClientLeaves(shutdown);
    case Delivery::headerThenSilence:
      return send(out.data(), head) && waitUntilClientLeaves(shutdown);
    case Delivery::cutInBody:
      send(out.data(), head + (out.size() - head) / 2);
      return false;
    case Delivery::trickle:
      if (!send(out.data(), head)) return false;
      for (size_t at = head; at < out.size(); ++at) {
        if (!shutdown.pause(answer.interval)) return false;
        if (at + 1 == out.size()) answer.underWay.reset();
        if (!send(&out[at], 1)) return false;
      }
      return true;
  }
  return false;
}

void TlsStream::closeCleanly() { SSL_shutdown(ssl_.get()); }

bool TlsStream::is_readable() const {
  return consumed_ < incoming_.size() || SSL_pending(ssl_.get()) > 0 ||
         readableWithin(socket_, std::chrono::seconds(30));
}

bool TlsStream::is_writable() const { return true; }

ssize_t TlsStream::read(char* bytes, size_t size) {
  if (consumed_ == incoming_.size()) {
    // A client that waits for "100 Continue" sends nothing before it has it.
    if (!outgoing_.empty()) {
      if (!send(outgoing_.data(), outgoing_.size())) return -1;
      outgoing_.clear();
    }
    incoming_.resize(size_t{16} * 1024);
    consumed_ = 0;
    const int got = SSL_read(ssl_.get(), incoming_.data(), static_cast<int>(incoming_.size()));
    incoming_.resize(got > 0 ? static_cast<size_t>(got) : 0);
    if (got <= 0) return got;
  }
  const size_t given = std::min(size, incoming_.size() - consumed_);
  std::memcpy(bytes, incoming_.data() + consumed_, given);
  consumed_ += given;
  return static_cast<ssize_t>(given);
}

ssize_t TlsStream::write(const char* bytes, size_t size) {
  outgoing_.append(bytes, size);
  return static_cast<ssize_t>(size);
}

void TlsStream::get_remote_ip_and_port(std::string& ip, int& port) const {
  sockaddr_in address{};
  socklen_t size = sizeof address;
  if (getpeername(socket_, reinterpret_cast<sockaddr*>(&address), &size) == 0) {
    describe(address, ip, port);
  }
}

void TlsStream::get_local_ip_and_port(std::string& ip, int& port) const {
  sockaddr_in address{};
  socklen_t size = sizeof address;
  if (getsockname(socket_, reinterpret_cast<sockaddr*>(&address), &size) == 0) {
    describe(address, ip, port);
  }
}

}  // namespace orlix::sandbox
