#include "orlixkit/protocol/OMNetwork.h"

#include <algorithm>
#include <mutex>
#include <new>

#include <fmt/format.h>

#include "orlixkit/platform/Host.h"

namespace orlix {

namespace {

/// The request's own limit (without any byte) and the limit of the whole exchange.
constexpr std::chrono::seconds timeLimit{60};

/// What one exchange has brought so far. Made anew for every request, so that a callback that comes
/// after the time-out finds its own, abandoned, exchange and never a result already handed out.
/// Its time limit runs from its making, so it is made before the connection is started.
class Exchange : public UrlConnectionDelegate {
 public:
  explicit Exchange(std::shared_ptr<Clock> clock)
      : clock_(std::move(clock)),
        condition_(clock_->newCondition()),
        deadline_(clock_->steadyNow() + timeLimit) {}

  enum class End { running, byCallback, cutShort, timedOut, shutDown };

  /// Waits until the exchange has ended or its time limit passes, and closes it: what a callback
  /// brings afterwards is dropped.
  End wait() {
    const std::lock_guard held(*condition_);
    while (end_ == End::running) {
      if (!condition_->waitUntil(deadline_) && end_ == End::running) {
        end_ = clock_->steadyNow() < deadline_ ? End::shutDown : End::timedOut;
      }
    }
    return end_;
  }

  /// To be called once, after `waitUntil`.
  NetworkResult takeResult() {
    const std::lock_guard held(*condition_);
    return std::move(networkResult_);
  }

  bool canAuthenticateAgainstProtectionSpace(AuthenticationMethod method) override {
    return method == AuthenticationMethod::serverTrust;
  }

  void didReceiveAuthenticationChallenge(AuthenticationChallenge& challenge) override;

  void didReceiveResponse(std::int64_t statusCode) override {
    const std::lock_guard held(*condition_);
    if (end_ == End::running) {
      // A redirect brings a second answer; what the first one said is void.
      responseData_.clear();
      networkResult_.responseCode = statusCode;
    }
  }

  void didReceiveData(std::span<const std::uint8_t> data) override {
    const std::lock_guard held(*condition_);
    if (end_ != End::running) {
      return;
    }
    if (data.size() > OMNetwork::longestAnswer - responseData_.size()) {
      cutShort();
      log(fmt::format("OMNetwork error. The answer is longer than {} bytes.",
                      OMNetwork::longestAnswer));
      return;
    }
    try {
      responseData_.append(data);
    } catch (const std::bad_alloc&) {
      cutShort();  // an answer with a gap must not pass for a whole one
    }
  }

  void didFinishLoading() override {
    const std::lock_guard held(*condition_);
    if (end_ == End::running) {
      networkResult_.payload = std::move(responseData_);
      finish(End::byCallback);
    }
  }

  void didFailWithError(const std::string& description) override {
    const std::lock_guard held(*condition_);
    if (end_ != End::running) {
      return;
    }
    if (clock_->steadyNow() >= deadline_) {
      // The request's own limit is as long and may be noticed first: a time-out all the same.
      finish(End::timedOut);
    } else {
      finish(End::byCallback);
      log("OMNetwork error. " + description);
    }
  }

 private:
  void cutShort() {
    responseData_.clear();
    finish(End::cutShort);
  }

  void finish(End end) {
    end_ = end;
    condition_->signal();
  }

  std::shared_ptr<Clock> clock_;
  std::unique_ptr<Condition> condition_;
  const SteadyTime deadline_;
  // All below are guarded by the condition's lock.
  End end_ = End::running;
  NetworkResult networkResult_;
  SecretBytes responseData_;
};

bool chainIsTrusted(ServerTrust& trust) {
  trust.setAnchorCertificates(OMNetwork::pinnedCertificates());
  // False on purpose: the pinned certificates are added to the system's roots, so that the server
  // may change to a publicly trusted certificate without a new release.
  trust.setAnchorCertificatesOnly(false);
  std::string error;
  const bool passed = trust.evaluate(error);
  if (!passed && !error.empty()) {
    log("Certificate validation failed: " + error);
  }
  return passed;
}

void Exchange::didReceiveAuthenticationChallenge(AuthenticationChallenge& challenge) {
  ServerTrust* const trust = challenge.serverTrust();
  if (trust == nullptr) {
    log("No server trust provided.");
    challenge.cancel();
  } else if (chainIsTrusted(*trust)) {
    log("SSL Pinning Successful: Certificate Chain Verified.");
    challenge.useCredentialForTrust();
  } else {
    log("SSL Pinning Failed: Certificate Chain Verification Failed.");
    challenge.cancel();
  }
}

/// A token comes from the server as it likes. One with control characters could add header lines of
/// its own, so it is not sent; the server then answers as to a request without it.
void addToken(UrlRequest& request, const std::string& header,
              const std::optional<std::string>& token) {
  if (!token) {
    return;
  }
  const auto isControl = [](char c) {
    return static_cast<unsigned char>(c) < 0x20U || static_cast<unsigned char>(c) == 0x7FU;
  };
  if (std::any_of(token->begin(), token->end(), isControl)) {
    log("OMNetwork: " + header + " is left out, it holds control characters");
    return;
  }
  request.headers.emplace_back(header, *token);
}

UrlRequest requestFor(const std::string& url, const std::optional<SecretBytes>& payload,
                      const DataStore& dataStore, std::function<bool()> mayBeSent) {
  UrlRequest request;
  request.url = url;
  request.method = "POST";
  request.timeout = timeLimit;
  request.headers.emplace_back("Content-Type", "application/json");
  addToken(request, "x-session-token1", dataStore.sessionId);
  addToken(request, "x-session-token2", dataStore.sessionId2);
  request.body = payload;
  request.mayBeSent = std::move(mayBeSent);
  return request;
}

NetworkResult exchangeWith(const Ports& ports, UrlRequest request) {
  const std::string url = request.url;
  const auto exchange = std::make_shared<Exchange>(ports.clock);
  const auto connection = ports.urlConnections->newConnection(std::move(request), exchange);
  // A queue of its own, so that the callbacks need no run loop of the blocked caller.
  connection->setDelegateQueue(ports.backgroundQueues->newOperationQueue());
  try {
    connection->start();
  } catch (...) {
    connection->cancel();  // what has failed must not be sent later
    throw;
  }

  const Exchange::End end = exchange->wait();
  if (end == Exchange::End::timedOut) {
    log(fmt::format("OMNetwork request timed out after {:.0f} seconds: {}",
                    std::chrono::duration<double>(timeLimit).count(), url));
  }
  if (end != Exchange::End::byCallback) {
    connection->cancel();
  }
  return exchange->takeResult();
}

}  // namespace

NetworkResult OMNetwork::post(const std::string& url, const std::optional<SecretBytes>& payload,
                              const DataStore& dataStore, std::function<bool()> mayBeSent) {
  try {
    NetworkResult result = exchangeWith(Host::current().ports(),
                                        requestFor(url, payload, dataStore, std::move(mayBeSent)));
    wipeStack();  // this thread may have sent the request and read the answer itself
    return result;
  } catch (const std::exception& failure) {
    log(std::string("OMNetwork error. ") + failure.what());
    return {};
  }
}

std::vector<Bytes> OMNetwork::pinnedCertificates() {
  const Bundle& bundle = *Host::current().ports().bundle;
  std::vector<Bytes> certificates;
  for (const char* const name : {"certificateroot", "certificatewildcard"}) {
    // One that is missing or unreadable is left out in silence: the system's roots still apply.
    if (std::optional<Bytes> certificate = bundle.resource(name, "cer")) {
      certificates.push_back(std::move(*certificate));
    }
  }
  return certificates;
}

}  // namespace orlix
