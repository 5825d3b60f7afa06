// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>

#include "sandbox/HttpServer.h"

namespace orlix::sandbox {

/// Answers a connection's requests, one after the other, by what `handler` returns, delivered as
/// the answer says; what is no request is refused and ends the connection.
///
/// Thread: the handler is called on the threads of the connections, several at once. Lifetime:
/// `shutdown` outlives the result.
HttpServer::Serve answering(std::function<HttpAnswer(const HttpRequest&)> handler,
                            Shutdown& shutdown);

}  // namespace orlix::sandbox
