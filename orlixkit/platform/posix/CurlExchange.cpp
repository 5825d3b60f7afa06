#include "orlixkit/platform/posix/CurlExchange.h"

#include <atomic>
#include <new>
#include <stdexcept>
#include <string_view>
#include <utility>

#include <fmt/format.h>
#include <openssl/ssl.h>

#include "orlixkit/platform/posix/CurlLoop.h"
#include "orlixkit/platform/posix/SystemTrust.h"
#include "orlixkit/platform/posix/TrustChallenge.h"

namespace orlix {

namespace {

constexpr int maximumRedirects = 20;

/// Runs a callback of libcurl or OpenSSL, through which no exception may pass: one becomes the
/// value by which the callback refuses.
template <class Result, class Callback>
Result orRefuse(Result refusal, const Callback& callback) {
  try {
    return callback();
  } catch (...) {
    return refusal;
  }
}

}  // namespace

CurlExchange::CurlExchange(UrlRequest request, std::shared_ptr<UrlConnectionDelegate> delegate,
                           std::shared_ptr<CurlLoop> loop)
    : loop_(std::move(loop)), delegate_(std::move(delegate)), request_(std::move(request)) {}

CurlExchange::~CurlExchange() = default;

void CurlExchange::setDelegateQueue(std::shared_ptr<OperationQueue> queue) {
  const std::lock_guard lock(lock_);
  queue_ = std::move(queue);
}

void CurlExchange::start() {
  {
    const std::lock_guard lock(lock_);
    if (started_ || !delegate_) {
      return;
    }
    if (!queue_) {
      throw std::logic_error("UrlConnection::start: set the delegate queue first");
    }
    started_ = true;
    starter_ = std::this_thread::get_id();
  }
  loop_->admit(shared_from_this());
}

void CurlExchange::cancel() {
  abandon();
  loop_->wake();
}

void CurlExchange::abandon() {
  std::shared_ptr<UrlConnectionDelegate> released;
  std::shared_ptr<OperationQueue> releasedQueue;
  const std::lock_guard lock(lock_);
  released.swap(delegate_);
  releasedQueue.swap(queue_);
}

bool CurlExchange::isOver() const {
  const std::lock_guard lock(lock_);
  return !delegate_ || ending_;
}

Task CurlExchange::taskFor(Callback callback) {
  return [self = shared_from_this(), callback = std::move(callback)] {
    std::shared_ptr<UrlConnectionDelegate> delegate;
    {
      const std::lock_guard lock(self->lock_);
      delegate = self->delegate_;
    }
    if (delegate) {
      callback(*delegate);
    }
  };
}

std::shared_ptr<OperationQueue> CurlExchange::openQueue() const {
  const std::lock_guard lock(lock_);
  return delegate_ && !ending_ ? queue_ : nullptr;
}

void CurlExchange::tell(Callback callback) {
  const std::shared_ptr<OperationQueue> queue = openQueue();
  if (!queue) {
    return;
  }
  OwnTasks* const own = loop_->ownTasks(*this);
  const auto selfServed =
      own != nullptr ? std::dynamic_pointer_cast<SelfServedQueue>(queue) : nullptr;
  if (!selfServed) {
    queue->add(taskFor(std::move(callback)));
  } else if (Task run = selfServed->addAndTake(taskFor(std::move(callback)))) {
    own->push_back({selfServed, std::move(run)});
  }
}

void CurlExchange::tellEnd(Callback callback) {
  try {
    tell([self = shared_from_this(),
          callback = std::move(callback)](UrlConnectionDelegate& delegate) {
      callback(delegate);
      self->abandon();
    });
  } catch (const std::bad_alloc&) {
    abandon();  // who waits for the end has a limit of his own
  }
  const std::lock_guard lock(lock_);
  ending_ = true;
}

void CurlExchange::fail(std::string_view description) {
  try {
    tellEnd([text = std::string(description)](UrlConnectionDelegate& delegate) {
      delegate.didFailWithError(text);
    });
  } catch (const std::bad_alloc&) {
    abandon();
  }
}

void CurlExchange::failSilent() {
  fail(fmt::format("the server sent nothing for {} seconds", request_.timeout.count()));
}

void CurlExchange::release() {
  easy_.reset();
  headers_.reset();
  request_.body.reset();
  request_.mayBeSent = nullptr;
}

template <class Value>
void CurlExchange::set(CURLoption option, Value value) {
  const CURLcode result = curl_easy_setopt(easy_.get(), option, value);
  if (result != CURLE_OK) {
    throw std::runtime_error(curl_easy_strerror(result));
  }
}

bool CurlExchange::prepare() {
  if (isOver()) {
    return false;
  }
  try {
    checkRequest(request_);
    easy_.reset(curl_easy_init());
    if (!easy_) {
      throw std::bad_alloc();
    }
    setConstantOptions();
    prepareHop(targetOf(request_.url));
    return true;
  } catch (const std::exception& error) {
    fail(error.what());
    return false;
  }
}

void CurlExchange::setConstantOptions() {
  set(CURLOPT_NOSIGNAL, 1L);
  // A cancel while the name is being looked up does not wait for the resolver.
  set(CURLOPT_QUICK_EXIT, 1L);
  set(CURLOPT_ERRORBUFFER, &errorText_[0]);
  set(CURLOPT_PROTOCOLS_STR, "https");
  // The order and the spelling of header fields are those of HTTP/1.1.
  set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
  // A user name in a redirect's address would be sent as a header field of its own.
  set(CURLOPT_DISALLOW_USERNAME_IN_URL, 1L);
  set(CURLOPT_FOLLOWLOCATION, 0L);
  // The least that libcurl takes: bodies are small, and the buffer is wiped after each of them.
  set(CURLOPT_UPLOAD_BUFFERSIZE, 16384L);
  // Straight to the server: what stands in the environment does not redirect a payment.
  set(CURLOPT_PROXY, "");

  // Kept for as long as the server keeps it: a payer may take minutes over one screen. The probes
  // find out when the network has lost it meanwhile.
  set(CURLOPT_MAXAGE_CONN, 3600L);
  set(CURLOPT_TCP_KEEPALIVE, 1L);
  set(CURLOPT_TCP_KEEPIDLE, 30L);
  set(CURLOPT_TCP_KEEPINTVL, 10L);

  set(CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
  set(CURLOPT_SSL_SESSIONID_CACHE, 0L);
  set(CURLOPT_SSL_VERIFYPEER, 1L);
  set(CURLOPT_SSL_VERIFYHOST, 2L);
  // The delegate judges; libcurl reads no bundle of its own.
  set(CURLOPT_CAINFO, static_cast<const char*>(nullptr));
  set(CURLOPT_CAPATH, static_cast<const char*>(nullptr));
  set(CURLOPT_SSL_CTX_FUNCTION, &onTlsContext);
  set(CURLOPT_SSL_CTX_DATA, this);

  set(CURLOPT_OPENSOCKETFUNCTION, &onOpenSocket);
  set(CURLOPT_OPENSOCKETDATA, this);
  set(CURLOPT_CLOSESOCKETFUNCTION, &CurlSockets::onClose);
  set(CURLOPT_CLOSESOCKETDATA, &loop_->sockets());
  set(CURLOPT_PREREQFUNCTION, &onRequest);
  set(CURLOPT_PREREQDATA, this);
  set(CURLOPT_HEADERFUNCTION, &onHeader);
  set(CURLOPT_HEADERDATA, this);
  set(CURLOPT_WRITEFUNCTION, &onData);
  set(CURLOPT_WRITEDATA, this);
}

void CurlExchange::prepareHop(RequestTarget target) {
  target_ = std::move(target);
  headers_ = headerListOf(request_, ownHost_);

  newConnection_ = false;
  stale_ = false;
  withdrawn_ = false;
  requestSent_ = false;
  headerEnded_ = false;
  errorText_[0] = '\0';
  hopBegin_ = lastByte_ = std::chrono::steady_clock::now();
  refused_ = false;

  set(CURLOPT_URL, target_.address.c_str());
  set(CURLOPT_FRESH_CONNECT, 0L);
  set(CURLOPT_HTTPHEADER, headers_.get());
  if (request_.method == "POST") {
    const bool filled = carriesBody();
    set(CURLOPT_POST, 1L);
    set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(filled ? request_.body->size() : 0));
    // Without a copy: the request outlives the transfer.
    set(CURLOPT_POSTFIELDS, filled ? reinterpret_cast<const char*>(request_.body->data()) : "");
  } else {
    set(CURLOPT_HTTPGET, 1L);
  }
}

bool CurlExchange::carriesBody() const {
  return request_.method == "POST" && request_.body && !request_.body->empty();
}

curl_socket_t CurlExchange::onOpenSocket(void* self, curlsocktype, curl_sockaddr* address) {
  auto& exchange = *static_cast<CurlExchange*>(self);
  // libcurl would send the request again by itself when a kept connection closes without an answer.
  // The server may have acted on the first one: a payment must not be made twice.
  if (exchange.requestSent_) {
    return CURL_SOCKET_BAD;
  }
  exchange.newConnection_ = true;
  return orRefuse(CURL_SOCKET_BAD, [&] { return exchange.loop_->sockets().open(*address); });
}

int CurlExchange::onRequest(void* self, char*, char*, int serverPort, int localPort) {
  auto& exchange = *static_cast<CurlExchange*>(self);
  if (exchange.requestSent_) {
    return CURL_PREREQFUNC_ABORT;  // again, over another kept connection
  }
  exchange.stale_ =
      !exchange.newConnection_ && !exchange.loop_->sockets().isIdle(localPort, serverPort);
  if (exchange.stale_) {
    return CURL_PREREQFUNC_ABORT;
  }
  exchange.withdrawn_ = !exchange.mayBeSent();
  if (exchange.withdrawn_) {
    return CURL_PREREQFUNC_ABORT;
  }
  exchange.requestSent_ = true;
  return CURL_PREREQFUNC_OK;
}

bool CurlExchange::mayBeSent() const {
  return !isOver() &&
         orRefuse(false, [this] { return !request_.mayBeSent || request_.mayBeSent(); });
}

std::size_t CurlExchange::onHeader(char* line, std::size_t unit, std::size_t count, void* self) {
  auto& exchange = *static_cast<CurlExchange*>(self);
  exchange.lastByte_ = std::chrono::steady_clock::now();
  const std::string_view text(line, unit * count);
  const bool blank = text == "\r\n" || text == "\n";
  long status = 0;
  curl_easy_getinfo(exchange.easy(), CURLINFO_RESPONSE_CODE, &status);
  // Told at the end of each header, so that a redirect counts before its target has answered.
  // Informational answers (1xx) are no response; after the body there may come a trailer.
  if (blank && status >= 200 && !exchange.headerEnded_) {
    exchange.headerEnded_ = true;
    return orRefuse(std::size_t{0}, [&] {
      exchange.tell(
          [status](UrlConnectionDelegate& delegate) { delegate.didReceiveResponse(status); });
      return unit * count;
    });
  }
  return unit * count;
}

std::size_t CurlExchange::onData(char* bytes, std::size_t unit, std::size_t count, void* self) {
  auto& exchange = *static_cast<CurlExchange*>(self);
  exchange.lastByte_ = std::chrono::steady_clock::now();
  const std::size_t size = unit * count;
  if (exchange.followsRedirect()) {
    return size;
  }
  return orRefuse(std::size_t{0}, [&] {
    const auto* begin = reinterpret_cast<const std::uint8_t*>(bytes);
    // An answer may hold keys: the piece is wiped once the delegate has had it.
    const auto piece = std::make_shared<SecretBytes>(std::span(begin, size));
    exchange.tell(
        [piece](UrlConnectionDelegate& delegate) { delegate.didReceiveData(piece->reveal()); });
    return size;
  });
}

bool CurlExchange::followsRedirect() const {
  long status = 0;
  curl_header* location = nullptr;
  curl_easy_getinfo(easy_.get(), CURLINFO_RESPONSE_CODE, &status);
  const bool redirects =
      status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
  return redirects &&
         curl_easy_header(easy_.get(), "Location", 0, CURLH_HEADER, -1, &location) == CURLHE_OK;
}

bool CurlExchange::endHop(CURLcode result) {
  if (result != CURLE_OK && std::exchange(stale_, false)) {
    // Nothing has been sent yet: the hop begins anew, over a connection of its own.
    curl_easy_setopt(easy_.get(), CURLOPT_FRESH_CONNECT, 1L);
    return true;
  }
  if (result == CURLE_OK && followsRedirect()) {
    return prepareRedirect();
  }
  if (result == CURLE_OK && headerEnded_) {
    tellEnd([](UrlConnectionDelegate& delegate) { delegate.didFinishLoading(); });
  } else if (refused_) {
    fail("the server's certificate was not accepted");
  } else if (withdrawn_) {
    fail("the request was withdrawn before it was sent");
  } else if (requestSent_ && lastByte_ == hopBegin_) {
    fail("the server closed the connection without an answer");
  } else if (result == CURLE_OK) {
    fail("the answer ended inside its header");
  } else {
    fail(errorText_[0] != '\0' ? &errorText_[0] : curl_easy_strerror(result));
  }
  return false;
}

bool CurlExchange::prepareRedirect() {
  if (isOver()) {
    return false;
  }
  long status = 0;
  const char* target = nullptr;
  curl_easy_getinfo(easy_.get(), CURLINFO_RESPONSE_CODE, &status);
  curl_easy_getinfo(easy_.get(), CURLINFO_REDIRECT_URL, &target);
  try {
    if (++redirects_ > maximumRedirects) {
      throw std::runtime_error(fmt::format("more than {} redirects", maximumRedirects));
    }
    if (target == nullptr) {
      throw std::runtime_error("a redirect to no address");
    }
    if (status != 307 && status != 308) {
      request_.method = "GET";
    }
    RequestTarget next = targetOf(target);
    // Once another host has had a say in where the request goes, the fields stay out.
    ownHost_ = ownHost_ && next.hasOriginOf(target_);
    if (!ownHost_ && carriesBody()) {
      throw std::runtime_error(
          fmt::format("the redirect to https://{} would carry the request's body to another server",
                      next.origin));
    }
    prepareHop(std::move(next));
    return true;
  } catch (const std::exception& error) {
    fail(error.what());
    return false;
  }
}

CURLcode CurlExchange::onTlsContext(CURL*, void* context, void* self) {
  auto* tls = static_cast<SSL_CTX*>(context);
  // libcurl writes the session keys where the variable SSLKEYLOGFILE says; a payment's are nobody
  // else's, whatever the environment.
  SSL_CTX_set_keylog_callback(tls, nullptr);
  // A further handshake on the same connection would ask an exchange that may be gone.
  SSL_CTX_set_options(tls, SSL_OP_NO_RENEGOTIATION | SSL_OP_CLEANSE_PLAINTEXT);
  SSL_CTX_set_cert_verify_callback(tls, &onCertificates, self);
  return CURLE_OK;
}

int CurlExchange::onCertificates(X509_STORE_CTX* presented, void* self) {
  auto& exchange = *static_cast<CurlExchange*>(self);
  const bool trusted = orRefuse(false, [&] {
    return exchange.isTrusted(std::make_shared<SystemTrust>(
        X509_STORE_CTX_get0_cert(presented), X509_STORE_CTX_get0_untrusted(presented),
        exchange.target_.host));
  });
  X509_STORE_CTX_set_error(presented, trusted ? X509_V_OK : X509_V_ERR_APPLICATION_VERIFICATION);
  return trusted ? 1 : 0;
}

bool CurlExchange::isTrusted(std::shared_ptr<SystemTrust> trust) {
  const std::shared_ptr<OperationQueue> queue = openQueue();
  if (!queue) {
    return false;
  }
  enum class Answer { none, accepted, refused };
  const auto answer = std::make_shared<std::atomic<Answer>>(Answer::none);
  const auto decide = [answer, loop = loop_](Answer given) {
    Answer before = Answer::none;
    answer->compare_exchange_strong(before, given);
    loop->wake();
  };
  // Released with the question. A queue that is shut down drops it, and then nobody else answers.
  std::shared_ptr<void> dropped(nullptr, [decide](void*) { decide(Answer::refused); });
  queue->add(taskFor([decide, trust, dropped = std::move(dropped)](auto& delegate) {
    bool accepted = false;
    if (delegate.canAuthenticateAgainstProtectionSpace(AuthenticationMethod::serverTrust)) {
      TrustChallenge challenge(*trust);
      delegate.didReceiveAuthenticationChallenge(challenge);
      accepted = challenge.isAccepted();
    } else {
      std::string error;
      accepted = trust->evaluate(error);
    }
    decide(accepted ? Answer::accepted : Answer::refused);
  }));
  loop_->giveAwayOwnTasks();
  // libcurl cannot set a handshake aside, so the driver rests while the delegate decides.
  loop_->wait(silentUntil(), [&] { return *answer != Answer::none || isOver(); });
  refused_ = *answer != Answer::accepted || isOver();
  return !refused_;
}

}  // namespace orlix
