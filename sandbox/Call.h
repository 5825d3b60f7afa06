// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "sandbox/EventLog.h"
#include "sandbox/Http.h"
#include "sandbox/Json.h"
#include "sandbox/Shutdown.h"
#include "sandbox/State.h"

namespace orlix::sandbox {

/// One request of the wallet protocol, its body already of the right shape, while it is answered.
/// The state is locked by `lock`.
struct Call {
  State& state;
  std::unique_lock<std::mutex>& lock;
  EventLog& log;
  Shutdown& shutdown;
  Session* session;  ///< None for the request that opens one.
  const json::object& body;
  std::string_view path;
};

/// Who may send a request.
enum class Access {
  open,      ///< Anybody.
  session,   ///< Who holds a session.
  enrolled,  ///< Who holds a session of an enrolled device.
};

/// A request of the protocol: its path, its exact body and what answers it.
struct Route {
  std::string_view path;
  Access access = Access::enrolled;
  Shape shape;
  HttpAnswer (*answer)(Call&);
};

const std::vector<Route>& sessionRoutes();
const std::vector<Route>& cardRoutes();
const std::vector<Route>& checkoutRoutes();
const std::vector<Route>& secureCodeRoutes();

HttpAnswer answerWith(const json::object& object);

/// Another status than 200, with the reason.
HttpAnswer refusal(int status, std::string_view reason);

/// {"done":true}
HttpAnswer done();

/// The client has broken the protocol: 400 with the reason.
HttpAnswer mistake(std::string_view reason);

}  // namespace orlix::sandbox
