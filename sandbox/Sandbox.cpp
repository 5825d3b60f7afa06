#include "sandbox/Sandbox.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <system_error>
#include <utility>

#include <fmt/format.h>

#include "sandbox/Control.h"
#include "sandbox/HttpFront.h"
#include "sandbox/Issuer.h"
#include "sandbox/Vello.h"

namespace orlix::sandbox {

namespace fs = std::filesystem;

namespace {

constexpr size_t requestsKept = 10'000;

fs::path makeTemporaryFolder() {
  std::string name = (fs::temp_directory_path() / "orlix-sandbox-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) {
    throw std::runtime_error(fmt::format("cannot make the folder {}", name));
  }
  return name;
}

void makeFolder(const fs::path& folder) {
  std::error_code error;
  const bool made = fs::create_directories(folder, error);
  if (error) {
    throw std::runtime_error(
        fmt::format("cannot make the folder {}: {}", folder.string(), error.message()));
  }
  if (made) fs::permissions(folder, fs::perms::owner_all, error);
}

}  // namespace

class Sandbox::Server {
 public:
  explicit Server(Options options) : options_(std::move(options)), log_(options_.onEvent) {}
  ~Server() { stop(); }
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  void start() {
    if (front_) throw std::runtime_error("the sandbox has been started already");
    state_ = std::make_unique<State>(options_.database);
    state_->everyDeviceEnrolled = options_.enrolled;
    state_->sessions.keepOnePerDevice(options_.oneSession);
    const Certificates certificates(options_.certificateFlaw);
    prepareFolder();
    certificates.write(folder_);
    vello_ = std::make_unique<Vello>(*state_, log_, shutdown_);
    issuer_ = std::make_unique<Issuer>(*state_);
    control_ = std::make_unique<Control>(
        *state_, Control::Connections{.counts = [this] { return front_->counts(); },
                                      .drop = [this] { front_->dropConnections(); }});
    HttpFront::Setup setup{
        .port = options_.port,
        .oldTlsOnly = options_.oldTlsOnly,
        .handler = [this](const HttpRequest& request) { return answer(request); },
        .gate =
            [this] {
              const std::lock_guard lock(state_->mutex);
              return state_->faults.takeForConnection();
            }};
    front_ = std::make_unique<HttpFront>(certificates, std::move(setup), log_, shutdown_);
    serve();
  }

  void stop() {
    shutdown_.begin();
    if (state_) {
      const std::lock_guard lock(state_->mutex);
      state_->changed.notify_all();
    }
    if (front_) front_->stop();
    if (temporary_) {
      std::error_code ignored;
      fs::remove_all(folder_, ignored);
      temporary_ = false;
    }
  }

  int port() const { return port_; }
  const fs::path& folder() const { return folder_; }
  EventLog& log() { return log_; }

  HttpAnswer answer(const HttpRequest& request) {
    if (!front_) return {.status = 503, .body = R"({"error":"the sandbox has not been started"})"};
    try {
      return Control::owns(request) ? control_->answer(request) : answerClient(request);
    } catch (const std::exception& failure) {
      return {.status = 500, .body = json::serialize(json::object{{"error", failure.what()}})};
    }
  }

 private:
  /// The port is known only once it is bound, and nothing is answered before it is known.
  void serve() {
    const std::lock_guard lock(state_->mutex);
    port_ = front_->start();
    state_->origin = fmt::format("https://127.0.0.1:{}", port_);
  }

  void prepareFolder() {
    temporary_ = options_.folder.empty();
    folder_ = temporary_ ? makeTemporaryFolder() : fs::path(options_.folder);
    if (!temporary_) makeFolder(folder_);
  }

  HttpAnswer answerClient(const HttpRequest& request) {
    const bool isPurchase = Vello::isPurchase(request);
    std::vector<Fault> faults;
    size_t place = 0;
    {
      const std::lock_guard lock(state_->mutex);
      faults = state_->faults.take(request.path);
      if (isPurchase) place = state_->purchases.received(request.path, request.body);
      for (const Fault& fault : faults) {
        if (fault.kind != Fault::Kind::forgetSession) continue;
        state_->sessions.forget(request.sessionToken1);
      }
    }
    HttpAnswer answer;
    if (std::all_of(faults.begin(), faults.end(), std::mem_fn(&Fault::carriesOut))) {
      answer = route(request);
    }
    const std::string told = answer.body;  // What the server meant, whatever becomes of it.
    for (const Fault& fault : faults) {
      Faults::spoil(answer, fault);
      if (fault.kind == Fault::Kind::hold) answer.hold = [this, fault] { return awaitEnd(fault); };
    }

    const std::lock_guard lock(state_->mutex);
    if (isPurchase) state_->purchases.answered(place, answer.status, told);
    remember(request, answer.status);
    return answer;
  }

  /// False when the server ends before the fault is cleared.
  bool awaitEnd(const Fault& fault) {
    std::unique_lock lock(state_->mutex);
    state_->changed.wait(lock, [&] { return shutdown_.begun() || !state_->faults.has(fault.id); });
    return !shutdown_.begun();
  }

  HttpAnswer route(const HttpRequest& request) {
    return Issuer::owns(request) ? issuer_->answer(request) : vello_->answer(request);
  }

  void remember(const HttpRequest& request, int status) {
    state_->seen.push_back({.method = request.method,
                            .path = request.path,
                            .status = status,
                            .token1 = !request.sessionToken1.empty(),
                            .token2 = !request.sessionToken2.empty(),
                            .contentType = request.contentType,
                            .bytes = request.body.size()});
    if (state_->seen.size() > requestsKept) state_->seen.pop_front();
  }

  Options options_;
  EventLog log_;
  Shutdown shutdown_;
  fs::path folder_;
  bool temporary_ = false;
  int port_ = 0;
  std::unique_ptr<State> state_;
  std::unique_ptr<Vello> vello_;
  std::unique_ptr<Issuer> issuer_;
  std::unique_ptr<Control> control_;
  std::unique_ptr<HttpFront> front_;  // Last: its threads use all of the above.
};

Sandbox::Sandbox(Options options) : server_(std::make_unique<Server>(std::move(options))) {}

Sandbox::~Sandbox() = default;

void Sandbox::start() {
  server_->start();
  server_->log().ready(base(), anchorPath(), terms());
}

void Sandbox::stop() { server_->stop(); }

int Sandbox::port() const { return server_->port(); }

std::string Sandbox::base() const {
  return fmt::format("https://127.0.0.1:{}/vello", server_->port());
}

std::string Sandbox::terms() const {
  return fmt::format("https://127.0.0.1:{}/terms/tavlo.html", server_->port());
}

std::string Sandbox::anchorPath() const {
  return (server_->folder() / "certificateroot.cer").string();
}

std::string Sandbox::serverCertificatePath() const {
  return (server_->folder() / "server.cer").string();
}

std::string Sandbox::control(std::string_view method, std::string_view path,
                             std::string_view body) {
  HttpRequest request;
  request.method = method;
  request.path = path;
  request.body = body;
  request.remoteAddress = "127.0.0.1";
  const HttpAnswer answer = server_->answer(request);
  if (answer.status != 200) throw std::runtime_error(answer.body);
  return answer.body;
}

}  // namespace orlix::sandbox
