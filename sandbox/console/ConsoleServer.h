// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <string>

#include "sandbox/Control.h"
#include "sandbox/Shutdown.h"
#include "sandbox/State.h"

namespace orlix::sandbox {

/// The web console: a plain HTTP server of its own, on 127.0.0.1 and nowhere else. It shows the
/// state as a page that follows it live, and changes it by way of `Control`.
///
/// Thread: `start` and `stop` on one. Lifetime: the arguments outlive it; the destructor stops it.
class ConsoleServer {
 public:
  /// Where the wallet server is, for the commands that the page offers to copy.
  struct Place {
    std::string base;
    std::string anchor;  ///< The root certificate, PEM.
  };

  ConsoleServer(State& state, Control& control, Shutdown& shutdown, Place place);
  ~ConsoleServer();
  ConsoleServer(const ConsoleServer&) = delete;
  ConsoleServer& operator=(const ConsoleServer&) = delete;

  /// Takes a free port and serves; returns the page's address, which holds the secret of this run.
  /// Throws std::runtime_error when there is no port.
  std::string start();

  /// Ends every stream and waits for the threads.
  void stop();

 private:
  class Server;
  std::unique_ptr<Server> server_;
};

}  // namespace orlix::sandbox
