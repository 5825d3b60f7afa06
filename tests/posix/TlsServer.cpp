#include "tests/posix/TlsServer.h"

#include <algorithm>
#include <csignal>
#include <sstream>
#include <stdexcept>
#include <unistd.h>

#include <arpa/inet.h>
#include <fmt/format.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

namespace orlix {

namespace {

std::shared_ptr<SSL_CTX> makeContext(const Identity& identity, int highestVersion) {
  std::shared_ptr<SSL_CTX> context(SSL_CTX_new(TLS_server_method()), SSL_CTX_free);
  if (highestVersion != 0) {
    // The distribution's security level leaves nothing below TLS 1.2 to speak.
    SSL_CTX_set_security_level(context.get(), 0);
    SSL_CTX_set_min_proto_version(context.get(), TLS1_VERSION);
    SSL_CTX_set_max_proto_version(context.get(), highestVersion);
  }
  if (SSL_CTX_use_certificate(context.get(), identity.certificate.get()) != 1 ||
      SSL_CTX_use_PrivateKey(context.get(), identity.key.get()) != 1) {
    throw std::runtime_error("the test server's certificate does not fit");
  }
  for (const std::shared_ptr<X509>& intermediate : identity.intermediates) {
    SSL_CTX_add1_chain_cert(context.get(), intermediate.get());
  }
  return context;
}

}  // namespace

bool TlsConnection::readMore() {
  char buffer[16384];
  const int count = SSL_read(tls_, buffer, sizeof buffer);
  if (count <= 0) {
    return false;
  }
  received_.append(buffer, static_cast<std::size_t>(count));
  return true;
}

std::optional<SeenRequest> TlsConnection::read() {
  std::size_t headerEnd = 0;
  while ((headerEnd = received_.find("\r\n\r\n")) == std::string::npos) {
    if (!readMore()) {
      return std::nullopt;
    }
  }
  std::istringstream header(received_.substr(0, headerEnd));
  received_.erase(0, headerEnd + 4);
  SeenRequest request;
  std::string line;
  header >> request.method >> request.path;
  std::getline(header, line);
  while (std::getline(header, line)) {
    line.erase(line.find_last_not_of('\r') + 1);
    const std::size_t colon = line.find(':');
    const std::size_t value = std::min(line.find_first_not_of(' ', colon + 1), line.size());
    request.headers.emplace_back(line.substr(0, colon), line.substr(value));
  }
  const std::size_t bodySize = std::stoul(request.field("Content-Length").value_or("0"));
  while (received_.size() < bodySize) {
    if (!readMore()) {
      return std::nullopt;
    }
  }
  request.body = received_.substr(0, bodySize);
  received_.erase(0, bodySize);
  return request;
}

bool TlsConnection::write(std::string_view bytes) {
  return bytes.empty() || SSL_write(tls_, bytes.data(), static_cast<int>(bytes.size())) > 0;
}

void TlsConnection::awaitClose() {
  while (readMore()) {
  }
}

TlsServer::TlsServer(const Identity& identity, Serve serve, int highestVersion)
    : context_(makeContext(identity, highestVersion)), serve_(std::move(serve)) {
  std::signal(SIGPIPE, SIG_IGN);  // the tests hang up while the other end writes
  listener_ = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  auto* generic = reinterpret_cast<sockaddr*>(&address);
  if (listener_ < 0 || ::bind(listener_, generic, size) != 0 || ::listen(listener_, 16) != 0 ||
      ::getsockname(listener_, generic, &size) != 0) {
    throw std::runtime_error("the test server cannot listen");
  }
  port_ = ntohs(address.sin_port);
  acceptor_ = std::thread([this] { accept(); });
}

TlsServer::~TlsServer() {
  {
    const std::lock_guard guard(lock_);
    closed_ = true;
    ::shutdown(listener_, SHUT_RDWR);
    for (const int socket : sockets_) {
      ::shutdown(socket, SHUT_RDWR);
    }
  }
  acceptor_.join();
  for (std::thread& thread : threads_) {
    thread.join();
  }
  ::close(listener_);
}

std::string TlsServer::address(const std::string& path, const std::string& host) const {
  return fmt::format("https://{}:{}{}", host, port_, path);
}

void TlsServer::accept() {
  while (true) {
    const int socket = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    const std::lock_guard guard(lock_);
    if (socket < 0 || closed_) {
      if (socket >= 0) {
        ::close(socket);
      }
      return;
    }
    const int on = 1;
    ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    ++connections_;
    sockets_.insert(socket);
    threads_.emplace_back([this, socket] { handle(socket); });
  }
}

void TlsServer::handle(int socket) {
  const std::unique_ptr<SSL, decltype(&SSL_free)> tls(SSL_new(context_.get()), SSL_free);
  SSL_set_fd(tls.get(), socket);
  if (SSL_accept(tls.get()) == 1) {
    ++handshakes_;
    TlsConnection connection(tls.get());
    serve_(connection);
    SSL_shutdown(tls.get());
  }
  const std::lock_guard guard(lock_);
  sockets_.erase(socket);
  ::close(socket);
}

std::string httpAnswer(int status, const std::string& fields, const std::string& body,
                       std::size_t missing) {
  return fmt::format("HTTP/1.1 {} Status\r\n{}Content-Length: {}\r\n\r\n{}", status, fields,
                     body.size() + missing, body);
}

}  // namespace orlix
