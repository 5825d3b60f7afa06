// SPDX-License-Identifier: Apache-2.0

#include "sandbox/HttpServer.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <condition_variable>
#include <csignal>
#include <fcntl.h>
#include <list>
#include <mutex>
#include <poll.h>
#include <stdexcept>
#include <thread>
#include <utility>

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/http/string_body.hpp>
#include <fmt/format.h>
#include <openssl/err.h>
#include <openssl/ssl.h>
#include <sys/socket.h>

#include "sandbox/UrlEncoding.h"

namespace orlix::sandbox {

namespace {

namespace asio = boost::asio;
namespace http = boost::beast::http;
using asio::ip::tcp;
using boost::system::error_code;

constexpr int kKeptAliveMilliseconds = 5 * 60 * 1000;
constexpr timeval kLongestWait{.tv_sec = 30, .tv_usec = 0};
constexpr size_t kMostConnections = 2000;
constexpr std::uint32_t kLongestHeader = 256 * 1024;

using Context = std::unique_ptr<SSL_CTX, void (*)(SSL_CTX*)>;

Context contextOf(const std::optional<TlsSetup>& setup) {
  Context context(nullptr, &SSL_CTX_free);
  if (!setup) return context;
  context.reset(SSL_CTX_new(TLS_server_method()));
  // The distribution's security level leaves nothing below TLS 1.2 to speak.
  if (setup->lowestVersion < TLS1_2_VERSION) SSL_CTX_set_security_level(context.get(), 0);
  bool works = SSL_CTX_use_certificate(context.get(), setup->certificate) == 1 &&
               SSL_CTX_use_PrivateKey(context.get(), setup->key) == 1 &&
               SSL_CTX_set_min_proto_version(context.get(), setup->lowestVersion) == 1 &&
               SSL_CTX_set_max_proto_version(context.get(), setup->highestVersion) == 1;
  for (X509* intermediate : setup->intermediates) {
    works = works && SSL_CTX_add1_chain_cert(context.get(), intermediate) == 1;
  }
  if (!works) throw std::runtime_error("cannot set up TLS");
  if (!setup->resumes) SSL_CTX_set_num_tickets(context.get(), 0);
  return context;
}

bool isReadableWithin(int socket, int milliseconds) {
  pollfd watched{.fd = socket, .events = POLLIN, .revents = 0};
  int ready = 0;
  do {
    ready = poll(&watched, 1, milliseconds);
  } while (ready < 0 && errno == EINTR);
  return ready > 0;
}

/// What of a parsed request the rest of the sandbox knows.
HttpRequest plain(http::request<http::string_body> request, std::string remoteAddress) {
  HttpRequest out{.method = std::string(request.method_string()),
                  .target = std::string(request.target()),
                  .remoteAddress = std::move(remoteAddress),
                  .keepAlive = request.keep_alive()};
  for (const auto& field : request) {
    out.headers.emplace_back(field.name_string(), field.value());
  }
  out.body = std::move(request.body());
  const size_t query = out.target.find('?');
  out.path = percentDecoded(out.target.substr(0, query));
  if (query != std::string::npos) out.form = formFields(out.target.substr(query + 1));
  if (out.contentType().starts_with("application/x-www-form-urlencoded")) {
    const HttpFields posted = formFields(out.body);
    out.form.insert(out.form.end(), posted.begin(), posted.end());
  }
  return out;
}

/// A connection as Beast reads it. Its waits are limited by the socket's own time-outs, which
/// Asio's blocking operations would override.
class Wire : public Connection {
 public:
  Wire(tcp::socket& socket, SSL_CTX* context, size_t longestBody)
      : socket_(socket),
        tls_(context != nullptr ? SSL_new(context) : nullptr, &SSL_free),
        longestBody_(longestBody) {
    for (const int kind : {SO_RCVTIMEO, SO_SNDTIMEO}) {
      setsockopt(socket.native_handle(), SOL_SOCKET, kind, &kLongestWait, sizeof kLongestWait);
    }
    if (tls_) SSL_set_fd(tls_.get(), socket.native_handle());
  }
  ~Wire() override { ERR_clear_error(); }
  Wire(const Wire&) = delete;
  Wire& operator=(const Wire&) = delete;

  bool handshake() { return !tls_ || SSL_accept(tls_.get()) == 1; }
  bool resumed() const { return tls_ && SSL_session_reused(tls_.get()) == 1; }
  void sayFarewell() {
    if (tls_) SSL_shutdown(tls_.get());
  }

  std::optional<HttpRequest> read() override {
    const bool waits = received_.size() == 0 && (!tls_ || SSL_pending(tls_.get()) == 0);
    if (waits && !isReadableWithin(socket_.native_handle(), kKeptAliveMilliseconds)) return {};
    http::request_parser<http::string_body> parser;
    parser.header_limit(kLongestHeader);
    parser.body_limit(longestBody_);
    error_code error;
    http::read_header(*this, received_, parser, error);
    if (!error && parser.get()[http::field::expect] == "100-continue") {
      write("HTTP/1.1 100 Continue\r\n\r\n");
    }
    if (!error) http::read(*this, received_, parser, error);
    if (error) {
      refuse(error);
      return {};
    }
    error_code unknown;
    return plain(parser.release(), socket_.remote_endpoint(unknown).address().to_string());
  }

  int refusal() const override { return refusal_; }

  bool write(std::string_view bytes) override {
    while (!bytes.empty()) {
      const ssize_t sent = send(bytes);
      if (sent <= 0) return false;
      bytes.remove_prefix(static_cast<size_t>(sent));
    }
    return true;
  }

  void awaitClose() override {
    std::array<char, 4096> ignored{};
    do {
      isReadableWithin(socket_.native_handle(), -1);
    } while (receive(ignored.data(), ignored.size()) > 0);
  }

  template <typename Buffers>
  size_t read_some(const Buffers& buffers, error_code& error) {
    const asio::mutable_buffer into = *asio::buffer_sequence_begin(buffers);
    const ssize_t got = receive(into.data(), into.size());
    error = got > 0 ? error_code() : error_code(asio::error::eof);
    return got > 0 ? static_cast<size_t>(got) : 0;
  }
  template <typename Buffers>
  size_t read_some(const Buffers& buffers) {
    error_code error;
    const size_t got = read_some(buffers, error);
    if (error) throw boost::system::system_error(error);
    return got;
  }

 private:
  ssize_t receive(void* into, size_t size) {
    if (!tls_) return ::recv(socket_.native_handle(), into, size, 0);
    size_t got = 0;
    return SSL_read_ex(tls_.get(), into, size, &got) == 1 ? static_cast<ssize_t>(got) : -1;
  }
  ssize_t send(std::string_view bytes) {
    if (!tls_) return ::send(socket_.native_handle(), bytes.data(), bytes.size(), 0);
    size_t sent = 0;
    const bool works = SSL_write_ex(tls_.get(), bytes.data(), bytes.size(), &sent) == 1;
    return works ? static_cast<ssize_t>(sent) : -1;
  }
  /// A client that leaves between two requests, or in one, is none to be answered.
  void refuse(error_code error) {
    if (error == http::error::end_of_stream || error == http::error::partial_message) return;
    refusal_ = error == http::error::body_limit     ? 413
               : error == http::error::header_limit ? 431
                                                    : 400;
  }

  tcp::socket& socket_;
  std::unique_ptr<SSL, void (*)(SSL*)> tls_;
  size_t longestBody_;
  boost::beast::flat_buffer received_;
  int refusal_ = 0;
};

void refuseHandshake(tcp::socket& socket) {
  // Read the greeting first: closing with unread bytes would reset the connection and lose the
  // alert.
  std::array<char, 4096> greeting{};
  error_code error;
  if (socket.read_some(asio::buffer(greeting), error) == 0) return;
  constexpr std::array<unsigned char, 7> kHandshakeFailure{21, 3, 3, 0, 2, 2, 40};
  socket.write_some(asio::buffer(kHandshakeFailure), error);
}

}  // namespace

class HttpServer::Listener {
 public:
  Listener(Setup setup, Shutdown& shutdown)
      : setup_(std::move(setup)), shutdown_(shutdown), context_(contextOf(setup_.tls)) {
    std::signal(SIGPIPE, SIG_IGN);  // OpenSSL writes to sockets whose other end may be closed.
  }
  ~Listener() { stop(); }
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;

  int start(int port) {
    try {
      acceptor_ = tcp::acceptor(
          io_, {asio::ip::make_address_v4(setup_.address), static_cast<std::uint16_t>(port)});
    } catch (const boost::system::system_error& failure) {
      throw std::runtime_error(fmt::format("cannot listen on {} port {}: {}", setup_.address, port,
                                           failure.code().message()));
    }
    ::fcntl(acceptor_.native_handle(), F_SETFD, FD_CLOEXEC);
    accepting_ = std::thread([this] { accept(); });
    return acceptor_.local_endpoint().port();
  }

  void stop() {
    if (!accepting_.joinable()) return;
    shutdown_.begin();
    ::shutdown(acceptor_.native_handle(), SHUT_RDWR);
    accepting_.join();  // From here on no connection is added.
    closeIf([](const Open&) { return true; });
    for (Open& open : open_) open.thread.join();
    open_.clear();
    acceptor_.close();
  }

  void dropConnections() {
    closeIf([](const Open& open) { return open.thread.get_id() != std::this_thread::get_id(); });
  }

  void awaitIdle() {
    std::unique_lock lock(mutex_);
    closed_.wait(lock, [this] {
      return std::all_of(open_.begin(), open_.end(), [](const Open& open) { return open.over; });
    });
  }

  ConnectionCounts counts() const {
    return {.connections = connections_, .handshakes = handshakes_, .resumed = resumed_};
  }

 private:
  struct Open {
    tcp::socket socket;
    std::thread thread{};
    bool over = false;  ///< Its thread ends at once.
  };

  void closeIf(bool (*condition)(const Open&)) {
    const std::lock_guard lock(mutex_);
    for (Open& open : open_) {
      if (!open.over && condition(open)) ::shutdown(open.socket.native_handle(), SHUT_RDWR);
    }
  }

  void accept() {
    while (!shutdown_.begun()) {
      error_code error;
      tcp::socket socket = acceptor_.accept(error);
      if (error) {  // No descriptor is left, for example.
        shutdown_.pause(std::chrono::milliseconds(20));
        continue;
      }
      ::fcntl(socket.native_handle(), F_SETFD, FD_CLOEXEC);
      socket.set_option(tcp::no_delay(true), error);
      ++connections_;
      const std::lock_guard lock(mutex_);
      open_.remove_if([](Open& open) {
        if (open.over) open.thread.join();
        return open.over;
      });
      if (open_.size() == kMostConnections) continue;  // It is closed.
      Open& open = open_.emplace_back(Open{.socket = std::move(socket)});
      open.thread = std::thread([this, &open] { handle(open); });
    }
  }

  void handle(Open& open) {
    serve(open.socket);
    const std::lock_guard lock(mutex_);
    error_code ignored;
    open.socket.close(ignored);
    open.over = true;
    closed_.notify_all();
  }

  void serve(tcp::socket& socket) {
    error_code ignored;
    switch (setup_.gate ? setup_.gate() : ConnectionFault::none) {
      case ConnectionFault::reset:
        socket.set_option(asio::socket_base::linger(true, 0), ignored);
        return;
      case ConnectionFault::refuseHandshake:
        return refuseHandshake(socket);
      case ConnectionFault::none:
        break;
    }
    Wire wire(socket, context_.get(), setup_.longestBody);
    if (!wire.handshake()) return;
    ++handshakes_;
    if (wire.resumed()) ++resumed_;
    if (setup_.serve(wire)) wire.sayFarewell();
  }

  Setup setup_;
  Shutdown& shutdown_;
  Context context_;
  asio::io_context io_;
  tcp::acceptor acceptor_{io_};
  std::thread accepting_;
  std::mutex mutex_;
  std::condition_variable closed_;
  std::list<Open> open_;
  std::atomic<std::int64_t> connections_{0};
  std::atomic<std::int64_t> handshakes_{0};
  std::atomic<std::int64_t> resumed_{0};
};

HttpServer::HttpServer(Setup setup, Shutdown& shutdown)
    : listener_(std::make_unique<Listener>(std::move(setup), shutdown)) {}

HttpServer::~HttpServer() = default;

int HttpServer::start(int port) { return listener_->start(port); }

void HttpServer::stop() { listener_->stop(); }

ConnectionCounts HttpServer::counts() const { return listener_->counts(); }

void HttpServer::dropConnections() { listener_->dropConnections(); }

void HttpServer::awaitIdle() { listener_->awaitIdle(); }

std::string reasonPhrase(int status) {
  return std::string(http::obsolete_reason(http::int_to_status(static_cast<unsigned>(status))));
}

}  // namespace orlix::sandbox
