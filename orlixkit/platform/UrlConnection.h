#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "orlixkit/platform/BackgroundQueues.h"
#include "orlixkit/platform/Secret.h"

namespace orlix {

/// One HTTP request. Header fields are sent in the order given, to the request's own host only:
/// after a redirect to another host all but Content-Type are left out.
struct UrlRequest {
  std::string url;  ///< absolute, https
  std::string method = "GET";
  std::vector<std::pair<std::string, std::string>> headers;
  std::optional<SecretBytes> body;   ///< none: a POST is sent with a length of 0
  std::chrono::seconds timeout{60};  ///< the longest time without any byte from the server
  /// Asked immediately before the request is written, once the connection to the server exists and
  /// is trusted, and again for each redirect and each further attempt. False fails the exchange,
  /// and no byte of that request is sent: a payment that waits for a slow connection can still be
  /// withdrawn. Empty: always sent. An exception counts as false.
  ///
  /// Thread: the transport's, which is a background thread or a caller that waits for its own
  /// exchange; no lock of the transport is held. Every exchange waits for the answer, so it must
  /// not block, nor use a connection. Destroyed with the request, on any thread.
  std::function<bool()> mayBeSent;
};

/// The chain of certificates that a server presented, and what it is judged by.
/// Lives as long as the challenge that it came with.
class ServerTrust {
 public:
  virtual ~ServerTrust() = default;

  /// Certificates to trust besides the system's roots, in DER form (X.509, RFC 5280). What is no
  /// certificate is left out without a message. An anchor may be a root or the server's own.
  virtual void setAnchorCertificates(std::vector<Bytes> anchors) = 0;
  /// True: only the anchors are trusted; false: the system's roots as well.
  virtual void setAnchorCertificatesOnly(bool only) = 0;
  /// Judges chain, validity, purpose and host name. On false `error` says why.
  virtual bool evaluate(std::string& error) = 0;
};

enum class AuthenticationMethod { serverTrust, other };

/// A question that the server's side asks before the request is sent. Exactly one of
/// `useCredentialForTrust` and `cancel` is to be called, before the delegate's callback returns.
class AuthenticationChallenge {
 public:
  virtual ~AuthenticationChallenge() = default;
  /// None when the platform has no chain to show. Owned by the challenge.
  virtual ServerTrust* serverTrust() = 0;
  virtual void useCredentialForTrust() = 0;
  virtual void cancel() = 0;
};

/// Hears how an exchange goes. Every callback runs on the connection's delegate queue, in the
/// order: challenge (on a new connection to the server only), response, data..., then exactly one
/// of finish and fail. A redirect that is followed brings a further response. After
/// `UrlConnection::cancel` has returned no further callback begins.
class UrlConnectionDelegate {
 public:
  virtual ~UrlConnectionDelegate() = default;
  virtual bool canAuthenticateAgainstProtectionSpace(AuthenticationMethod method) = 0;
  virtual void didReceiveAuthenticationChallenge(AuthenticationChallenge& challenge) = 0;
  virtual void didReceiveResponse(std::int64_t statusCode) = 0;
  virtual void didReceiveData(std::span<const std::uint8_t> data) = 0;
  virtual void didFinishLoading() = 0;
  virtual void didFailWithError(const std::string& description) = 0;
};

/// One HTTP exchange. Nothing is cached. A request is sent once: only a redirect makes a further
/// one (301, 302 and 303 turn a POST into a GET, 307 and 308 keep method and body). A redirect that
/// would carry a body to another origin (host or port) is not followed and fails the exchange: the
/// body of a payment is for the server it was addressed to.
class UrlConnection {
 public:
  virtual ~UrlConnection() = default;
  /// To be called once, before `start`.
  virtual void setDelegateQueue(std::shared_ptr<OperationQueue> queue) = 0;
  virtual void start() = 0;
  /// Ends the exchange without a further callback. Harmless when it has ended already.
  virtual void cancel() = 0;
};

/// Makes connections. Connections to one server are kept alive and shared.
/// Thread: any. After `close` a started connection fails at once.
class UrlConnections {
 public:
  virtual ~UrlConnections() = default;
  /// The connection keeps the delegate alive until its last callback.
  virtual std::shared_ptr<UrlConnection> newConnection(
      UrlRequest request, std::shared_ptr<UrlConnectionDelegate> delegate) = 0;
  /// Fails every exchange under way and returns when none is left. The delegates are not told.
  virtual void close() = 0;
};

}  // namespace orlix
