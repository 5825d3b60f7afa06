#include "sandbox/HttpFront.h"

#include <array>
#include <atomic>
#include <httplib.h>
#include <stdexcept>
#include <thread>
#include <unistd.h>
#include <unordered_set>
#include <utility>

#include <fmt/format.h>
#include <openssl/err.h>
#include <sys/socket.h>

#include "sandbox/ConnectionThreads.h"
#include "sandbox/TlsStream.h"

namespace orlix::sandbox {

namespace {

constexpr std::chrono::minutes keptAlive{5};

/// The answer being made on this connection's thread: cpp-httplib writes it, the stream delivers
/// it.
thread_local HttpAnswer* currentAnswer = nullptr;

/// The socket of this thread's connection; none on other threads.
thread_local int currentSocket = -1;

void limitWaits(int socket) {
  const timeval limit{.tv_sec = 30, .tv_usec = 0};
  setsockopt(socket, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
  setsockopt(socket, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
}

void resetConnection(int socket) {
  const linger abrupt{.l_onoff = 1, .l_linger = 0};
  setsockopt(socket, SOL_SOCKET, SO_LINGER, &abrupt, sizeof abrupt);
}

void refuseHandshake(int socket) {
  // Read the greeting first: closing with unread bytes would reset the connection and lose the
  // alert.
  std::array<char, 4096> greeting{};
  if (recv(socket, greeting.data(), greeting.size(), 0) <= 0) return;
  constexpr std::array<unsigned char, 7> handshakeFailure{21, 3, 3, 0, 2, 2, 40};
  send(socket, handshakeFailure.data(), handshakeFailure.size(), MSG_NOSIGNAL);
}

HttpRequest plain(const httplib::Request& request) {
  HttpRequest out;
  out.method = request.method;
  out.path = request.path;
  out.body = request.body;
  out.contentType = request.get_header_value("Content-Type");
  out.sessionToken1 = request.get_header_value("x-session-token1");
  out.sessionToken2 = request.get_header_value("x-session-token2");
  out.remoteAddress = request.remote_addr;
  for (const auto& [name, value] : request.headers) out.headerNames.push_back(name);
  for (const auto& [name, value] : request.params) out.form.emplace_back(name, value);
  return out;
}

}  // namespace

class HttpFront::Server : public httplib::Server {
 public:
  Server(const Certificates& certificates, Setup setup, EventLog& log, Shutdown& shutdown)
      : setup_(std::move(setup)),
        log_(log),
        shutdown_(shutdown),
        context_(SSL_CTX_new(TLS_server_method()), &SSL_CTX_free) {
    if (!context_ || SSL_CTX_use_certificate(context_.get(), certificates.server()) != 1 ||
        SSL_CTX_use_PrivateKey(context_.get(), certificates.serverKey()) != 1) {
      throw std::runtime_error("cannot set up TLS");
    }
    SSL_CTX_set_min_proto_version(context_.get(), TLS1_2_VERSION);
    if (setup_.oldTlsOnly) {
      SSL_CTX_set_security_level(context_.get(), 0);
      SSL_CTX_set_min_proto_version(context_.get(), TLS1_VERSION);
      SSL_CTX_set_max_proto_version(context_.get(), TLS1_1_VERSION);
    }
    configure();
  }

  ~Server() override { end(); }

  int begin() {
    const int port = setup_.port == 0 ? bind_to_any_port("127.0.0.1")
                                      : (bind_to_port("127.0.0.1", setup_.port) ? setup_.port : -1);
    if (port <= 0) throw std::runtime_error(fmt::format("cannot listen on port {}", setup_.port));
    listener_ = std::thread([this] { listen_after_bind(); });
    while (!is_running()) std::this_thread::yield();
    return port;
  }

  void end() {
    if (!listener_.joinable()) return;
    shutdown_.begin();
    {
      const std::lock_guard lock(mutex_);
      for (const int open : open_) ::shutdown(open, SHUT_RDWR);
    }
    stop();
    listener_.join();
  }

  void dropConnections() {
    const std::lock_guard lock(mutex_);
    for (const int open : open_) {
      if (open != currentSocket) ::shutdown(open, SHUT_RDWR);
    }
  }

  ConnectionCounts counts() const {
    return {.connections = connections_, .handshakes = handshakes_, .resumed = resumed_};
  }

 private:
  void configure() {
    new_task_queue = [] { return new ConnectionThreads; };  // cpp-httplib takes ownership.
    set_tcp_nodelay(true);
    // The library's own default shares the port with a second server without a word.
    set_socket_options([](socket_t socket) {
      const int yes = 1;
      setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    });
    set_keep_alive_max_count(1'000'000);
    set_keep_alive_timeout(std::chrono::seconds(keptAlive).count());
    set_payload_max_length(size_t{4} << 20);
    const auto answer = [this](const httplib::Request& request, httplib::Response& response) {
      fill(response, request);
    };
    Get(".*", answer);
    Post(".*", answer);
    Put(".*", answer);
    Patch(".*", answer);
    Delete(".*", answer);
    Options(".*", answer);
  }

  void fill(httplib::Response& response, const httplib::Request& request) {
    HttpAnswer& answer = *currentAnswer;
    const Moment arrived = now();
    answer = setup_.handler(plain(request));
    const bool silent = answer.delivery == Delivery::hangUp || answer.delivery == Delivery::silence;
    // Before the answer is sent, so that a client that has the answer finds the line.
    log_.request({.method = request.method,
                  .path = request.path,
                  .status = silent ? 0 : answer.status,
                  .reason = answer.reason,
                  .arrived = arrived,
                  .duration = now() - arrived});
    response.status = answer.status;
    for (const auto& [name, value] : answer.headers) response.set_header(name, value);
    response.set_content(answer.body, answer.contentType);
  }

  bool process_and_close_socket(socket_t socket) override {
    ++connections_;
    if (enter(socket)) {
      limitWaits(socket);
      currentSocket = socket;
      serve(socket);
      leave(socket);
    }
    ::close(socket);
    return true;
  }

  void serve(socket_t socket) {
    switch (setup_.gate ? setup_.gate() : ConnectionFault::none) {
      case ConnectionFault::reset:
        return resetConnection(socket);
      case ConnectionFault::refuseHandshake:
        return refuseHandshake(socket);
      case ConnectionFault::none:
        break;
    }
    TlsStream stream(socket, context_.get());
    if (!stream.handshake()) return;
    ++handshakes_;
    if (stream.resumed()) ++resumed_;
    while (!shutdown_.begun() && stream.awaitRequest(keptAlive)) {
      HttpAnswer answer;
      currentAnswer = &answer;
      bool asksToClose = false;
      const bool understood = process_request(stream, false, asksToClose, [](httplib::Request&) {});
      currentAnswer = nullptr;
      if (!stream.deliver(std::move(answer), shutdown_))
        return;  // A fault, or the client has gone.
      if (!understood || asksToClose) break;
    }
    stream.closeCleanly();
  }

  bool enter(int socket) {
    const std::lock_guard lock(mutex_);
    if (shutdown_.begun()) return false;
    open_.insert(socket);
    return true;
  }

  void leave(int socket) {
    const std::lock_guard lock(mutex_);
    open_.erase(socket);
  }

  Setup setup_;
  EventLog& log_;
  Shutdown& shutdown_;
  std::unique_ptr<SSL_CTX, void (*)(SSL_CTX*)> context_;
  std::thread listener_;
  std::mutex mutex_;
  std::unordered_set<int> open_;
  std::atomic<std::int64_t> connections_{0};
  std::atomic<std::int64_t> handshakes_{0};
  std::atomic<std::int64_t> resumed_{0};
};

HttpFront::HttpFront(const Certificates& certificates, Setup setup, EventLog& log,
                     Shutdown& shutdown)
    : server_(std::make_unique<Server>(certificates, std::move(setup), log, shutdown)) {}

HttpFront::~HttpFront() = default;

int HttpFront::start() { return server_->begin(); }

void HttpFront::stop() { server_->end(); }

ConnectionCounts HttpFront::counts() const { return server_->counts(); }

void HttpFront::dropConnections() { server_->dropConnections(); }

}  // namespace orlix::sandbox
