#include "fuzz/RawServer.h"

#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <unistd.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

namespace orlix::fuzz {

namespace {

bool readMore(SSL* tls, std::string& text) {
  char piece[16384];
  const int count = SSL_read(tls, piece, sizeof piece);
  if (count <= 0) {
    return false;
  }
  text.append(piece, static_cast<std::size_t>(count));
  return true;
}

/// False when the client leaves in the middle.
bool readRequest(SSL* tls, RawRequest& request) {
  std::string text;
  std::size_t end = 0;
  while ((end = text.find("\r\n\r\n")) == std::string::npos) {
    if (!readMore(tls, text)) {
      return false;
    }
  }
  request.header = text.substr(0, end + 2);
  const std::size_t length = request.header.find("Content-Length: ");
  const std::size_t size =
      length == std::string::npos ? 0 : std::stoul(request.header.substr(length + 16));
  text.erase(0, end + 4);
  while (text.size() < size) {
    if (!readMore(tls, text)) {
      return false;
    }
  }
  request.body = std::move(text);
  return true;
}

}  // namespace

RawServer::RawServer(const Identity& identity)
    : context_(SSL_CTX_new(TLS_server_method()), SSL_CTX_free) {
  std::signal(SIGPIPE, SIG_IGN);  // the client hangs up while this end writes
  SSL_CTX_set_num_tickets(context_.get(), 0);
  listener_ = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  auto* const generic = reinterpret_cast<sockaddr*>(&address);
  if (SSL_CTX_use_certificate(context_.get(), identity.certificate.get()) != 1 ||
      SSL_CTX_use_PrivateKey(context_.get(), identity.key.get()) != 1 || listener_ < 0 ||
      ::bind(listener_, generic, size) != 0 || ::listen(listener_, 16) != 0 ||
      ::getsockname(listener_, generic, &size) != 0) {
    throw std::runtime_error("the server cannot listen");
  }
  port_ = ntohs(address.sin_port);
  thread_ = std::thread([this] { run(); });
}

RawServer::~RawServer() {
  closed_ = true;
  ::shutdown(listener_, SHUT_RDWR);
  thread_.join();
  ::close(listener_);
}

void RawServer::prepare(std::vector<std::string> answers) {
  const std::lock_guard guard(lock_);
  answers_ = std::move(answers);
  requests_.clear();
}

std::vector<RawRequest> RawServer::requests() {
  std::unique_lock guard(lock_);
  changed_.wait(guard, [this] { return !busy_; });
  return requests_;
}

void RawServer::setBusy(bool busy) {
  const std::lock_guard guard(lock_);
  busy_ = busy;
  changed_.notify_all();
}

void RawServer::run() {
  while (!closed_) {
    const int socket = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    if (socket >= 0) {
      setBusy(true);
      handle(socket);
      ::close(socket);
      setBusy(false);
    }
  }
}

void RawServer::handle(int socket) {
  const int on = 1;
  ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  const std::unique_ptr<SSL, decltype(&SSL_free)> tls(SSL_new(context_.get()), SSL_free);
  SSL_set_fd(tls.get(), socket);
  if (SSL_accept(tls.get()) == 1) {
    serve(tls.get());
  }
}

void RawServer::serve(SSL* tls) {
  RawRequest request;
  if (!readRequest(tls, request)) {
    return;
  }
  std::string answer;
  {
    const std::lock_guard guard(lock_);
    if (requests_.size() < answers_.size()) {
      answer = answers_[requests_.size()];
    }
    requests_.push_back(std::move(request));
  }
  // Every other answer ends without TLS's own farewell, as on a line that was cut.
  const bool farewell = answer.size() % 2 == 0;
  if (!answer.empty()) {
    SSL_write(tls, answer.data(), static_cast<int>(answer.size()));
  }
  if (farewell) {
    SSL_shutdown(tls);
  }
}

}  // namespace orlix::fuzz
