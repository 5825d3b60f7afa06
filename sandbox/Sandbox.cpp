// SPDX-License-Identifier: Apache-2.0

#include "sandbox/Sandbox.h"

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <system_error>
#include <utility>

#include <fmt/format.h>

#include "sandbox/Answering.h"
#include "sandbox/Call.h"
#include "sandbox/ClientRequests.h"
#include "sandbox/Control.h"
#include "sandbox/HttpServer.h"
#include "sandbox/Recorder.h"
#include "sandbox/Scenario.h"
#include "sandbox/console/ConsoleServer.h"

namespace orlix::sandbox {

namespace fs = std::filesystem;

namespace {

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
    if (!options_.scenario.empty()) loadScenario(options_.scenario, *state_);
    state_->sessions.keepOnePerDevice(options_.oneSession);
    prepareFolder();
    const Certificates certificates(certificateSetup());
    certificates.write(folder_);
    if (options_.record.empty()) options_.record = Recorder::fileOfProcess();
    if (!options_.record.empty()) recorder_ = std::make_unique<Recorder>(options_.record);
    clients_ = std::make_unique<ClientRequests>(*state_, log_, shutdown_, recorder_.get());
    control_ = std::make_unique<Control>(
        *state_, Control::Connections{.counts = [this] { return counts(); },
                                      .drop = [this] { dropConnections(); }});
    front_ = makeServer("127.0.0.1", certificates, &Server::answer);
    if (!options_.listen.empty()) {
      outside_ = makeServer(options_.listen, certificates, &Server::answerOutside);
    }
    serve();
    if (options_.console) {
      console_ = std::make_unique<ConsoleServer>(
          *state_, *control_, shutdown_,
          ConsoleServer::Place{.base = state_->origin + "/vello",
                               .anchor = (folder_ / Certificates::kAnchorAsText).string()});
      consoleAddress_ = console_->start();
    }
  }

  void stop() {
    shutdown_.begin();
    if (state_) {
      const std::lock_guard lock(state_->mutex);
      state_->changed.notify_all();
    }
    if (console_) console_->stop();
    if (outside_) outside_->stop();
    if (front_) front_->stop();
    if (temporary_) {
      std::error_code ignored;
      fs::remove_all(folder_, ignored);
      temporary_ = false;
    }
  }

  int port() const { return port_; }
  /// "https://127.0.0.1:PORT", or the other address that is listened on.
  std::string origin() const {
    return fmt::format("https://{}:{}", options_.listen.empty() ? "127.0.0.1" : options_.listen,
                       port_);
  }
  const std::string& consoleAddress() const { return consoleAddress_; }
  const fs::path& folder() const { return folder_; }
  EventLog& log() { return log_; }

  HttpAnswer answer(const HttpRequest& request) {
    if (!front_) return refusal(503, "the sandbox has not been started");
    try {
      return Control::owns(request) ? control_->answer(request) : clients_->answer(request);
    } catch (const std::exception& failure) {
      return refusal(500, failure.what());
    }
  }

 private:
  using Answer = HttpAnswer (Server::*)(const HttpRequest&);

  Certificates::Setup certificateSetup() const {
    Certificates::Setup setup{.flaw = options_.certificateFlaw};
    if (!options_.listen.empty()) setup.addresses.push_back(options_.listen);
    if (options_.keepRoot) setup.keptRoot = folder_ / "certificateroot.key";
    return setup;
  }

  std::unique_ptr<HttpServer> makeServer(const std::string& address,
                                         const Certificates& certificates, Answer how) {
    TlsSetup tls{.certificate = certificates.server(), .key = certificates.serverKey()};
    if (options_.oldTlsOnly) {
      tls.lowestVersion = TLS1_VERSION;
      tls.highestVersion = TLS1_1_VERSION;
    }
    return std::make_unique<HttpServer>(
        HttpServer::Setup{
            .address = address,
            .tls = std::move(tls),
            .serve = answering(
                [this, how](const HttpRequest& request) { return noted(request, how); }, shutdown_),
            .gate = [this] { return admit(); }},
        shutdown_);
  }

  /// Of the network only what a wallet on a phone needs.
  HttpAnswer answerOutside(const HttpRequest& request) {
    const bool isForWallets = request.path.starts_with("/vello/") || Issuer::owns(request);
    return isForWallets ? answer(request) : refusal(404, "there is no such page at this address");
  }

  ConnectionCounts counts() const {
    ConnectionCounts all = front_->counts();
    if (!outside_) return all;
    const ConnectionCounts more = outside_->counts();
    return {.connections = all.connections + more.connections,
            .handshakes = all.handshakes + more.handshakes,
            .resumed = all.resumed + more.resumed};
  }

  void dropConnections() {
    front_->dropConnections();
    if (outside_) outside_->dropConnections();
  }

  /// Every exchange over the network, for whoever keeps account of them.
  HttpAnswer noted(const HttpRequest& request, Answer how) {
    const Moment arrived = now();
    HttpAnswer made = (this->*how)(request);
    const bool silent = made.delivery == Delivery::hangUp || made.delivery == Delivery::silence;
    // Before the answer is sent, so that a client that has the answer finds the line.
    log_.request({.method = request.method,
                  .path = request.path,
                  .status = silent ? 0 : made.status,
                  .reason = made.reason,
                  .arrived = arrived,
                  .duration = now() - arrived});
    return made;
  }

  /// The port is known only once it is bound, and nothing is answered before it is known.
  void serve() {
    const std::lock_guard lock(state_->mutex);
    port_ = front_->start(options_.port);
    if (outside_) outside_->start(port_);
    state_->origin = origin();
  }

  /// Decides how to handle a new connection.
  ConnectionFault admit() {
    std::unique_lock lock(state_->mutex);
    const auto fault = state_->faults.takeForConnection();
    if (fault) state_->touch();
    if (!fault) return ConnectionFault::none;
    if (fault->kind == Fault::Kind::refuseHandshake) return ConnectionFault::refuseHandshake;
    const bool goesOn = fault->kind == Fault::Kind::holdHandshake &&
                        state_->awaitCleared(fault->id, lock, shutdown_);
    return goesOn ? ConnectionFault::none : ConnectionFault::reset;
  }

  void prepareFolder() {
    temporary_ = options_.folder.empty();
    folder_ = temporary_ ? makeTemporaryFolder() : fs::path(options_.folder);
    if (!temporary_) makeFolder(folder_);
  }

  Options options_;
  EventLog log_;
  Shutdown shutdown_;
  fs::path folder_;
  bool temporary_ = false;
  int port_ = 0;
  std::unique_ptr<State> state_;
  std::unique_ptr<Recorder> recorder_;
  std::unique_ptr<ClientRequests> clients_;
  std::unique_ptr<Control> control_;
  std::string consoleAddress_;
  // Last: their threads use all of the above.
  std::unique_ptr<HttpServer> front_;
  std::unique_ptr<HttpServer> outside_;
  std::unique_ptr<ConsoleServer> console_;
};

Sandbox::Sandbox(Options options) : server_(std::make_unique<Server>(std::move(options))) {}

Sandbox::~Sandbox() = default;

void Sandbox::start() {
  server_->start();
  server_->log().ready({.base = base(),
                        .local = fmt::format("https://127.0.0.1:{}", port()),
                        .anchor = anchorPath(),
                        .anchorText = server_->folder() / Certificates::kAnchorAsText,
                        .terms = terms(),
                        .console = console()});
}

void Sandbox::stop() { server_->stop(); }

int Sandbox::port() const { return server_->port(); }

std::string Sandbox::base() const { return server_->origin() + "/vello"; }

std::string Sandbox::console() const { return server_->consoleAddress(); }

std::string Sandbox::terms() const { return server_->origin() + "/terms/tavlo.html"; }

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
