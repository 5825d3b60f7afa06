#include "sandbox/console/ConsoleServer.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <charconv>
#include <httplib.h>
#include <stdexcept>
#include <thread>
#include <utility>

#include <fmt/format.h>
#include <openssl/crypto.h>
#include <sys/socket.h>

#include "sandbox/Call.h"
#include "sandbox/ConnectionThreads.h"
#include "sandbox/Masking.h"
#include "sandbox/Random.h"
#include "sandbox/console/ConsoleFiles.h"
#include "sandbox/console/ConsoleStream.h"
#include "sandbox/console/QrPicture.h"
#include "sandbox/console/RequestRules.h"

namespace orlix::sandbox {

namespace {

constexpr int mostStreams = 32;
constexpr size_t longestWish = size_t{64} * 1024;
constexpr std::chrono::milliseconds betweenEvents{100};

const httplib::Headers& protectiveHeaders() {
  static const httplib::Headers headers{
      {"Content-Security-Policy",
       "default-src 'none'; script-src 'self'; style-src 'self'; connect-src 'self'; "
       "img-src 'self' data:; base-uri 'none'; form-action 'none'; frame-ancestors 'none'"},
      {"Cache-Control", "no-store"},
      {"X-Content-Type-Options", "nosniff"},
      {"X-Frame-Options", "DENY"},
      {"Referrer-Policy", "no-referrer"},
      {"Cross-Origin-Opener-Policy", "same-origin"},
      {"Cross-Origin-Resource-Policy", "same-origin"},
  };
  return headers;
}

std::optional<std::string> header(const httplib::Request& request, const char* name) {
  if (!request.has_header(name)) return std::nullopt;
  return request.get_header_value(name);
}

std::int64_t numberIn(std::string_view text, std::int64_t otherwise) {
  std::int64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size() ? number : otherwise;
}

void answer(httplib::Response& response, const HttpAnswer& with) {
  response.status = with.status;
  response.set_content(with.body, with.contentType);
}

/// What the page may look at below /control.
bool isShown(std::string_view name) {
  constexpr std::array<std::string_view, 6> shown{"codes",   "payments", "messages",
                                                  "wallets", "faults",   "state"};
  return std::find(shown.begin(), shown.end(), name) != shown.end();
}

}  // namespace

class ConsoleServer::Server {
 public:
  Server(State& state, Control& control, Shutdown& shutdown, Place place)
      : state_(state), control_(control), shutdown_(shutdown), place_(std::move(place)) {}
  ~Server() { stop(); }
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  std::string start() {
    configure();
    port_ = http_.bind_to_any_port("127.0.0.1");
    if (port_ <= 0) throw std::runtime_error("the console cannot listen on any port");
    listener_ = std::thread([this] { http_.listen_after_bind(); });
    while (!http_.is_running()) std::this_thread::yield();
    return fmt::format("http://127.0.0.1:{}{}", port_, root_);
  }

  void stop() {
    if (!listener_.joinable()) return;
    shutdown_.begin();
    {
      const std::lock_guard lock(state_.mutex);
      state_.watchers.notify_all();
    }
    http_.stop();
    listener_.join();
  }

 private:
  using Request = httplib::Request;
  using Response = httplib::Response;

  void configure() {
    http_.new_task_queue = [] { return new ConnectionThreads; };  // cpp-httplib takes ownership.
    http_.set_tcp_nodelay(true);
    http_.set_socket_options([](socket_t socket) {
      const int yes = 1;
      setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    });
    // A connection that waits for its next request would hold up the end of the server.
    http_.set_keep_alive_max_count(1);
    http_.set_keep_alive_timeout(1);
    http_.set_payload_max_length(longestWish);
    http_.set_default_headers(protectiveHeaders());
    http_.set_pre_routing_handler([this](const Request& request, Response& response) {
      return admits(request, response) ? httplib::Server::HandlerResponse::Unhandled
                                       : httplib::Server::HandlerResponse::Handled;
    });
    http_.Get(".*", [this](const Request& request, Response& response) { get(request, response); });
    http_.Post(root_ + "control",
               [this](const Request& request, Response& response) { wish(request, response); });
  }

  /// Without the secret every path gives the same answer.
  bool admits(const Request& request, Response& response) const {
    const RequestSource source{.host = request.get_header_value("Host"),
                               .origin = header(request, "Origin"),
                               .fetchSite = header(request, "Sec-Fetch-Site")};
    if (const auto why = refusalOf(source, port_)) {
      answer(response, refusal(403, *why));
      return false;
    }
    const bool known = request.path.size() >= root_.size() &&
                       CRYPTO_memcmp(request.path.data(), root_.data(), root_.size()) == 0;
    if (!known) answer(response, refusal(404, "there is no such page"));
    return known;
  }

  void get(const Request& request, Response& response) {
    const std::string path = request.path.substr(root_.size());
    if (path == "events") return stream(request, response);
    if (path == "qr") return answer(response, qr(request.get_param_value("code")));
    if (path == "place") {
      return answer(response, answerWith({{"base", place_.base}, {"anchor", place_.anchor}}));
    }
    if (path.rfind("requests/", 0) == 0) return answer(response, whole(path.substr(9)));
    if (path.rfind("data/", 0) == 0 && isShown(path.substr(5))) {
      return answer(response, ask("GET", "/control/" + path.substr(5), ""));
    }
    for (const ConsoleFile& file : consoleFiles()) {
      if (file.name != (path.empty() ? "index.html" : path)) continue;
      response.set_content(file.bytes.data(), file.bytes.size(),
                           fmt::format("{}; charset=utf-8", file.contentType));
      return;
    }
    answer(response, refusal(404, "there is no such page"));
  }

  HttpAnswer ask(const std::string& method, const std::string& path, const std::string& body) {
    HttpRequest request;
    request.method = method;
    request.path = path;
    request.body = body;
    request.remoteAddress = "127.0.0.1";
    return control_.answer(request);
  }

  /// {"method":M,"path":P,"body":{...}}: a request to Control. The page learns no PIN or CVV.
  void wish(const Request& request, Response& response) {
    const std::string type = request.get_header_value("Content-Type");
    if (type != "application/json") {
      return answer(response, refusal(415, "the Content-Type is not application/json"));
    }
    const auto wish = parseObject(request.body);
    if (!wish) return answer(response, mistake("the body is no JSON object"));
    if (auto wrong = complaint(*wish, {{"method"}, {"path"}, {"body", Kind::object}})) {
      return answer(response, mistake(*wrong));
    }
    if (textOf(*wish, "method") == "GET") return answer(response, mistake("ask by GET"));
    HttpAnswer answered =
        ask(textOf(*wish, "method"), textOf(*wish, "path"), json::serialize(wish->at("body")));
    answered.body = maskBody(answered.body, answered.contentType, {}).text;
    answer(response, answered);
  }

  HttpAnswer whole(std::string_view number) {
    const std::lock_guard lock(state_.mutex);
    const auto found = state_.seen.whole(numberIn(number, 0));
    return found ? answerWith(*found) : refusal(404, "the request is not kept any more");
  }

  HttpAnswer qr(const std::string& code) {
    {
      const std::lock_guard lock(state_.mutex);
      if (!state_.codes.find(code)) return refusal(404, "there is no such code");
    }
    auto picture = qrPicture(code);
    if (!picture) return refusal(404, "the code is too long for a picture");
    return {.body = std::move(*picture), .contentType = "image/svg+xml"};
  }

  void stream(const Request& request, Response& response) {
    const auto open = std::make_shared<Open>(streams_);
    if (streams_ > mostStreams) {
      return answer(response, refusal(503, "too many consoles are open"));
    }
    // A page that lost its connection says what it knows; a new one knows nothing.
    const std::string known = request.has_header("Last-Event-ID")
                                  ? request.get_header_value("Last-Event-ID")
                                  : request.get_param_value("since");
    const auto events = std::make_shared<ConsoleStream>(state_, shutdown_, numberIn(known, 0));
    response.set_chunked_content_provider(
        "text/event-stream", [this, open, events](size_t, httplib::DataSink& sink) {
          const std::string news = events->next();
          if (shutdown_.begun() || !sink.is_writable()) return false;
          // A comment now and then shows both sides that the other is there.
          const std::string& sent = news.empty() ? std::string(":\n\n") : news;
          if (!sink.write(sent.data(), sent.size())) return false;
          return news.empty() || shutdown_.pause(betweenEvents);
        });
  }

  /// Counts a stream while it is open.
  struct Open {
    explicit Open(std::atomic<int>& count) : streams(count) { ++streams; }
    ~Open() { --streams; }
    Open(const Open&) = delete;
    Open& operator=(const Open&) = delete;
    std::atomic<int>& streams;
  };

  State& state_;
  Control& control_;
  Shutdown& shutdown_;
  Place place_;
  const std::string root_ = "/" + randomHex(16) + "/";
  int port_ = 0;
  std::atomic<int> streams_{0};
  httplib::Server http_;
  std::thread listener_;
};

ConsoleServer::ConsoleServer(State& state, Control& control, Shutdown& shutdown, Place place)
    : server_(std::make_unique<Server>(state, control, shutdown, std::move(place))) {}

ConsoleServer::~ConsoleServer() = default;

std::string ConsoleServer::start() { return server_->start(); }

void ConsoleServer::stop() { server_->stop(); }

}  // namespace orlix::sandbox
