#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace orlix::sandbox {

/// One request as the rest of the sandbox sees it; no HTTP library shows through.
struct HttpRequest {
  std::string method{};
  std::string path{};
  std::string body{};
  std::string contentType{};
  std::string sessionToken1{};
  std::string sessionToken2{};
  std::string remoteAddress{};
  std::vector<std::string> headerNames{};
  std::vector<std::pair<std::string, std::string>> form{};  ///< Decoded fields of a posted form.
};

/// How an answer leaves the connection. All but `whole` are faults that a client must survive.
enum class Delivery {
  whole,
  hangUp,             ///< Nothing is sent; the connection closes.
  silence,            ///< Nothing is sent; the connection stays open.
  headerThenSilence,  ///< The header, then nothing more.
  cutInBody,          ///< The header and half the body, then the connection closes.
  trickle,            ///< The header, then the body one byte at a time.
};

struct HttpAnswer {
  int status = 200;
  std::string body{};
  std::string contentType = "application/json";
  std::vector<std::pair<std::string, std::string>> headers{};
  Delivery delivery = Delivery::whole;
  std::chrono::milliseconds delay{0};        ///< Waited before anything is sent.
  std::function<bool()> hold{};              ///< Then waits; false: nothing is to be sent any more.
  std::chrono::milliseconds interval{1000};  ///< Between two bytes of a trickled body.
  std::string reason{};  ///< Why the request is refused, for the server's own account.
  /// Released before the last byte is sent, or when it is certain that it never will be.
  std::shared_ptr<void> underWay{};
};

}  // namespace orlix::sandbox
