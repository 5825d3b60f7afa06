// SPDX-License-Identifier: Apache-2.0

#include "sandbox/console/ConsoleServer.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <charconv>
#include <utility>

#include <fmt/format.h>
#include <openssl/crypto.h>

#include "sandbox/Answering.h"
#include "sandbox/Call.h"
#include "sandbox/Masking.h"
#include "sandbox/Random.h"
#include "sandbox/console/ConsoleFiles.h"
#include "sandbox/console/ConsoleStream.h"
#include "sandbox/console/QrPicture.h"
#include "sandbox/console/RequestRules.h"

namespace orlix::sandbox {

namespace {

constexpr int kMostStreams = 32;
constexpr size_t kLongestWish = size_t{64} * 1024;
constexpr std::chrono::milliseconds kBetweenEvents{100};

const HttpFields& protectiveHeaders() {
  static const HttpFields headers{
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

std::int64_t numberIn(std::string_view text, std::int64_t otherwise) {
  std::int64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size() ? number : otherwise;
}

/// What the page may look at below /control.
bool isShown(std::string_view name) {
  constexpr std::array<std::string_view, 6> kShown{"codes",   "payments", "messages",
                                                   "wallets", "faults",   "state"};
  return std::find(kShown.begin(), kShown.end(), name) != kShown.end();
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
    port_ = http_.start();
    return fmt::format("http://127.0.0.1:{}{}", port_, root_);
  }

  void stop() {
    shutdown_.begin();
    {
      const std::lock_guard lock(state_.mutex);
      state_.watchers.notify_all();
    }
    http_.stop();
  }

 private:
  HttpAnswer answer(const HttpRequest& request) {
    HttpAnswer answer = admitted(request);
    answer.headers.insert(answer.headers.end(), protectiveHeaders().begin(),
                          protectiveHeaders().end());
    return answer;
  }

  /// Without the secret every path gives the same answer.
  HttpAnswer admitted(const HttpRequest& request) {
    const RequestSource source{.host = request.header("Host").value_or(""),
                               .origin = request.header("Origin"),
                               .fetchSite = request.header("Sec-Fetch-Site")};
    if (const auto why = refusalOf(source, port_)) return refusal(403, *why);
    const bool known = request.path.size() >= root_.size() &&
                       CRYPTO_memcmp(request.path.data(), root_.data(), root_.size()) == 0;
    if (known && (request.method == "GET" || request.method == "HEAD")) return get(request);
    if (known && request.method == "POST" && request.path == root_ + "control") {
      return wish(request);
    }
    return refusal(404, "there is no such page");
  }

  HttpAnswer get(const HttpRequest& request) {
    const std::string path = request.path.substr(root_.size());
    if (path == "events") return stream(request);
    if (path == "qr") return qr(request.field("code"));
    if (path == "place") return answerWith({{"base", place_.base}, {"anchor", place_.anchor}});
    if (path.rfind("requests/", 0) == 0) return whole(path.substr(9));
    if (path.rfind("data/", 0) == 0 && isShown(path.substr(5))) {
      return ask("GET", "/control/" + path.substr(5), "");
    }
    for (const ConsoleFile& file : consoleFiles()) {
      if (file.name != (path.empty() ? "index.html" : path)) continue;
      return {.body = std::string(file.bytes),
              .contentType = fmt::format("{}; charset=utf-8", file.contentType)};
    }
    return refusal(404, "there is no such page");
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
  HttpAnswer wish(const HttpRequest& request) {
    if (request.contentType() != "application/json") {
      return refusal(415, "the Content-Type is not application/json");
    }
    const auto wish = parseObject(request.body);
    if (!wish) return mistake("the body is no JSON object");
    if (auto wrong = complaint(*wish, {{"method"}, {"path"}, {"body", Kind::object}})) {
      return mistake(*wrong);
    }
    if (textOf(*wish, "method") == "GET") return mistake("ask by GET");
    HttpAnswer answered =
        ask(textOf(*wish, "method"), textOf(*wish, "path"), json::serialize(wish->at("body")));
    answered.body = maskBody(answered.body, answered.contentType, {}).text;
    return answered;
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

  HttpAnswer stream(const HttpRequest& request) {
    const auto open = std::make_shared<Open>(streams_);
    if (streams_ > kMostStreams) return refusal(503, "too many consoles are open");
    // A page that lost its connection says what it knows; a new one knows nothing.
    const std::string known = request.header("Last-Event-ID").value_or(request.field("since"));
    const auto events = std::make_shared<ConsoleStream>(state_, shutdown_, numberIn(known, 0));
    return {.contentType = "text/event-stream",
            .stream = [this, open, events, pauses = false]() mutable -> std::string {
              if (std::exchange(pauses, false) && !shutdown_.pause(kBetweenEvents)) return {};
              std::string news = events->next();
              if (shutdown_.begun()) return {};
              pauses = !news.empty();
              // A comment now and then shows both sides that the other is there.
              return news.empty() ? ":\n\n" : news;
            }};
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
  HttpServer http_{{.serve = answering(
                        [this](const HttpRequest& request) { return answer(request); }, shutdown_),
                    .longestBody = kLongestWish},
                   shutdown_};
};

ConsoleServer::ConsoleServer(State& state, Control& control, Shutdown& shutdown, Place place)
    : server_(std::make_unique<Server>(state, control, shutdown, std::move(place))) {}

ConsoleServer::~ConsoleServer() = default;

std::string ConsoleServer::start() { return server_->start(); }

void ConsoleServer::stop() { server_->stop(); }

}  // namespace orlix::sandbox
