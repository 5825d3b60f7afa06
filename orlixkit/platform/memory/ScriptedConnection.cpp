#include "orlixkit/platform/memory/ScriptedConnection.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace orlix {

namespace {

constexpr int kMostRedirects = 20;

/// Scheme, host and port of an address.
std::string serverOf(const std::string& url) {
  const std::size_t scheme = url.find("://");
  return url.substr(0, url.find('/', scheme == std::string::npos ? 0 : scheme + 3));
}

bool isSecure(const std::string& url) { return url.starts_with("https://"); }

bool breaksTheLine(const std::string& text) {
  return text.find_first_of(std::string_view("\r\n\0", 3)) != std::string::npos;
}

/// The challenge as the delegate meets it; remembers the decision.
class TrustChallenge : public AuthenticationChallenge {
 public:
  explicit TrustChallenge(std::shared_ptr<ScriptedTrust> trust) : trust_(std::move(trust)) {}
  ServerTrust* serverTrust() override { return trust_->missing ? nullptr : trust_.get(); }
  void useCredentialForTrust() override { trust_->setAccepted(true); }
  void cancel() override { trust_->setAccepted(false); }

 private:
  std::shared_ptr<ScriptedTrust> trust_;
};

}  // namespace

ScriptedConnection::ScriptedConnection(ScriptedConnections& network, UrlRequest request,
                                       std::shared_ptr<UrlConnectionDelegate> delegate)
    : network_(&network),
      world_(network.world_),
      request_(std::move(request)),
      delegate_(std::move(delegate)) {}

void ScriptedConnection::setDelegateQueue(std::shared_ptr<OperationQueue> queue) {
  queue_ = std::move(queue);
}

void ScriptedConnection::start() {
  if (!queue_ || started_) {
    throw std::logic_error("UrlConnection::start: to be called once, after setDelegateQueue");
  }
  started_ = true;
  const std::string refusal = reasonToRefuse();
  if (!refusal.empty()) {
    fail(refusal);
  } else {
    atServer(network_->connectTime_, &ScriptedConnection::send);
  }
  world_->mayBeOvertaken();
}

void ScriptedConnection::cancel() {
  // Released at the end: the delegate may hold the last reference to this connection.
  const std::shared_ptr<ScriptedConnection> self = shared_from_this();
  ending_ = true;
  const std::shared_ptr<UrlConnectionDelegate> released = std::exchange(delegate_, nullptr);
}

std::string ScriptedConnection::reasonToRefuse() const {
  if (network_->closed_) {
    return "The network is closed.";
  }
  if (!isSecure(request_.url)) {
    return "The address " + request_.url + " is not secure.";
  }
  const auto isBroken = [](const auto& field) {
    return breaksTheLine(field.first) || breaksTheLine(field.second);
  };
  if (std::any_of(request_.headers.begin(), request_.headers.end(), isBroken)) {
    return "A header field holds a line break.";
  }
  return {};
}

void ScriptedConnection::atServer(Duration delay, void (ScriptedConnection::*next)()) {
  world_->inBackground(
      "server",
      [self = shared_from_this(), next] {
        if (!self->ending_) {
          ((*self).*next)();
        }
      },
      delay);
}

bool ScriptedConnection::mayBeSent() const {
  try {
    return !request_.mayBeSent || request_.mayBeSent();
  } catch (...) {
    return false;
  }
}

void ScriptedConnection::send() {
  if (!mayBeSent()) {
    fail("The request was withdrawn before it was sent.");
  } else if (network_->latency_ == Duration{}) {
    ask();
  } else {
    atServer(network_->latency_, &ScriptedConnection::ask);
  }
}

void ScriptedConnection::ask() {
  RecordedRequest seen{request_.url, request_.method, request_.headers, std::nullopt};
  if (request_.body) {
    const auto bytes = request_.body->reveal();
    seen.body = std::string(bytes.begin(), bytes.end());
  }
  reply_ = network_->replyTo(seen);
  next_ = 0;
  goOn();
}

void ScriptedConnection::goOn() {
  while (!ending_ && next_ < reply_.steps().size()) {
    const ServerReply::Step& step = reply_.steps()[next_++];
    if (!std::visit([this](const auto& kind) { return take(kind); }, step)) {
      return;
    }
  }
  tellLast([](UrlConnectionDelegate& delegate) { delegate.didFinishLoading(); });
}

bool ScriptedConnection::take(const ServerReply::Pause& step) {
  const Duration patience = request_.timeout - quiet_;
  quiet_ += step.span;
  if (step.span > patience) {
    atServer(patience, &ScriptedConnection::timeOut);
  } else {
    atServer(step.span, &ScriptedConnection::goOn);
  }
  return false;
}

bool ScriptedConnection::take(const ServerReply::Silence&) {
  atServer(request_.timeout - quiet_, &ScriptedConnection::timeOut);
  return false;
}

bool ScriptedConnection::take(const ServerReply::Challenge& step) {
  quiet_ = {};
  queue_->add([self = shared_from_this(), trust = step.trust] { self->askForTrust(trust); });
  return false;
}

bool ScriptedConnection::take(const ServerReply::Status& step) {
  quiet_ = {};
  status_ = step.code;
  tell([code = step.code](UrlConnectionDelegate& delegate) { delegate.didReceiveResponse(code); });
  return true;
}

bool ScriptedConnection::take(const ServerReply::Body& step) {
  quiet_ = {};
  tell([bytes = toBytes(step.piece)](UrlConnectionDelegate& delegate) {
    delegate.didReceiveData(bytes);
  });
  return true;
}

bool ScriptedConnection::take(const ServerReply::Redirect& step) {
  follow(step.target);
  return false;
}

bool ScriptedConnection::take(const ServerReply::Failure& step) {
  fail(step.description);
  return false;
}

void ScriptedConnection::timeOut() { fail("The request timed out."); }

void ScriptedConnection::askForTrust(const std::shared_ptr<ScriptedTrust>& trust) {
  const std::shared_ptr<UrlConnectionDelegate> delegate = delegate_;
  if (!delegate) {
    return;
  }
  std::string error;
  if (delegate->canAuthenticateAgainstProtectionSpace(trust->method)) {
    TrustChallenge challenge(trust);
    delegate->didReceiveAuthenticationChallenge(challenge);
  } else {
    trust->setAccepted(trust->evaluate(error));
  }
  if (trust->accepted()) {
    atServer({}, &ScriptedConnection::goOn);
  } else {
    fail("The server's certificates were refused.");
  }
}

void ScriptedConnection::follow(const std::string& target) {
  if (++redirects_ > kMostRedirects || !isSecure(target)) {
    fail(isSecure(target) ? "Too many redirects." : "A redirect leads to no secure address.");
    return;
  }
  if (status_ >= 301 && status_ <= 303 && request_.method == "POST") {
    request_.method = "GET";
    request_.body.reset();
  }
  if (serverOf(target) != serverOf(request_.url)) {
    if (request_.body && !request_.body->empty()) {
      fail("The redirect to " + serverOf(target) +
           " would carry the request's body to another server.");
      return;
    }
    std::erase_if(request_.headers,
                  [](const auto& field) { return field.first != "Content-Type"; });
  }
  request_.url = target;
  atServer({}, &ScriptedConnection::send);
}

void ScriptedConnection::tell(Callback callback) {
  queue_->add([self = shared_from_this(), callback = std::move(callback)] {
    if (const std::shared_ptr<UrlConnectionDelegate> delegate = self->delegate_) {
      callback(*delegate);
    }
  });
}

void ScriptedConnection::tellLast(Callback callback) {
  if (std::exchange(ending_, true)) {
    return;
  }
  queue_->add([self = shared_from_this(), callback = std::move(callback)] {
    if (const auto delegate = std::exchange(self->delegate_, nullptr)) {
      callback(*delegate);
    }
  });
}

void ScriptedConnection::fail(const std::string& description) {
  tellLast(
      [description](UrlConnectionDelegate& delegate) { delegate.didFailWithError(description); });
}

}  // namespace orlix
