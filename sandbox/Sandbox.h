// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "sandbox/Certificates.h"
#include "sandbox/EventLog.h"

namespace orlix::sandbox {

struct Options {
  int port = 0;             ///< On 127.0.0.1; 0 takes a free one.
  std::string listen{};     ///< An address of this machine to serve wallets at too; empty: none.
  std::string database{};   ///< SQLite file; empty: in memory.
  std::string folder{};     ///< Where the certificates are written; empty: a new temporary folder.
  std::string scenario{};   ///< JSON file with codes and cards to begin with; empty: none.
  bool keepRoot = false;    ///< Keep the root certificate in `folder`, for the next start.
  bool enrolled = false;    ///< Every device counts as enrolled, with a wallet of every card.
  bool console = false;     ///< Serve the web console too.
  bool oneSession = false;  ///< A device's session start ends its former sessions.
  /// Append every exchange to this file; empty: as the environment says (Recorder.h).
  std::string record{};
  EventLog::Sink
      onEvent{};  ///< Gets each JSON line; called on the server's threads, one at a time.
  CertificateFlaw certificateFlaw = CertificateFlaw::none;  ///< For clients that must refuse it.
  bool oldTlsOnly = false;  ///< TLS 1.1 at most, for clients that must refuse it.
};

/// The wallet server for development, whole, in this process.
///
/// Thread: `start` and `stop` on one thread; the rest anywhere after `start`.
/// Lifetime: the destructor stops it. It removes a temporary folder that it has made.
class Sandbox {
 public:
  explicit Sandbox(Options options = {});
  ~Sandbox();
  Sandbox(const Sandbox&) = delete;
  Sandbox& operator=(const Sandbox&) = delete;

  /// Makes the certificates, opens the database and serves. Throws std::runtime_error with the
  /// reason: a port that is taken, a folder or a database that cannot be used.
  void start();

  /// Ends every connection and waits for it; answers that are held back are dropped.
  void stop();

  int port() const;
  std::string base() const;                   ///< "https://127.0.0.1:PORT/vello", or of `listen`.
  std::string terms() const;                  ///< The address of the terms page.
  std::string console() const;                ///< The console's address; empty when there is none.
  std::string anchorPath() const;             ///< The root certificate, DER.
  std::string serverCertificatePath() const;  ///< The server's own certificate, DER.

  /// Asks or sets what the control address offers, without the network; returns the JSON answer.
  /// Throws std::runtime_error with the reason when it is refused.
  std::string control(std::string_view method, std::string_view path, std::string_view body = {});

 private:
  class Server;
  std::unique_ptr<Server> server_;
};

}  // namespace orlix::sandbox
