// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/posix/CurlExchange.h"

#include <algorithm>
#include <chrono>
#include <new>
#include <stdexcept>
#include <utility>

#include <fmt/format.h>
#include <openssl/ssl.h>

#include "orlixkit/posix/SystemTrust.h"

namespace orlix {

namespace {

constexpr int kMaximumRedirects = 20;

void check(CURLMcode result) {
  if (result != CURLM_OK) {
    throw std::runtime_error(curl_multi_strerror(result));
  }
}

/// An easy handle in its multi handle.
class Transfer {
 public:
  Transfer(CURLM* multi, CURL* easy) : multi_(multi), easy_(easy) {
    check(curl_multi_add_handle(multi, easy));
  }
  ~Transfer() { curl_multi_remove_handle(multi_, easy_); }
  Transfer(const Transfer&) = delete;
  Transfer& operator=(const Transfer&) = delete;

 private:
  CURLM* const multi_;
  CURL* const easy_;
};

}  // namespace

CurlExchange::CurlExchange(const HttpRequest& request, HttpDelegate& delegate, CurlChannel& channel,
                           const Clock& clock, const std::atomic<bool>& closed)
    : request_(request),
      delegate_(delegate),
      channel_(channel),
      clock_(clock),
      closed_(closed),
      easy_(curl_easy_init()),
      method_(request.method) {
  if (!easy_) {
    throw std::bad_alloc();
  }
  setConstantOptions();
  setCallbacks();
}

HttpResult CurlExchange::run(RequestTarget target) {
  for (;;) {
    prepareHop(std::move(target));
    const CURLcode result = transfer();
    if (result != CURLE_OK || !followsRedirect()) {
      return resultOf(result);
    }
    target = redirectTarget();
  }
}

template <class Value>
void CurlExchange::set(CURLoption option, Value value) {
  const CURLcode result = curl_easy_setopt(easy_.get(), option, value);
  if (result != CURLE_OK) {
    throw std::runtime_error(curl_easy_strerror(result));
  }
}

void CurlExchange::setConstantOptions() {
  set(CURLOPT_NOSIGNAL, 1L);
  // An exchange that ends while the name is being looked up does not wait for the resolver.
  set(CURLOPT_QUICK_EXIT, 1L);
  set(CURLOPT_ERRORBUFFER, &errorText_[0]);
  // The order and the spelling of header fields are those of HTTP/1.1.
  set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
  set(CURLOPT_FOLLOWLOCATION, 0L);
  // The least that libcurl takes: bodies are small, and the buffer is wiped after each of them.
  set(CURLOPT_UPLOAD_BUFFERSIZE, 16384L);
  // Ignore proxy environment variables: they must not reroute a payment.
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
}

void CurlExchange::setCallbacks() {
  set(CURLOPT_SSL_CTX_FUNCTION, &onTlsContext);
  set(CURLOPT_SSL_CTX_DATA, this);
  set(CURLOPT_OPENSOCKETFUNCTION, &onOpenSocket);
  set(CURLOPT_OPENSOCKETDATA, this);
  set(CURLOPT_CLOSESOCKETFUNCTION, &CurlChannel::onClose);
  set(CURLOPT_CLOSESOCKETDATA, &channel_);
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
  hop_ = {};
  errorText_[0] = '\0';

  set(CURLOPT_URL, static_cast<const char*>(nullptr));  // of the hop before
  set(CURLOPT_CURLU, target_.address.get());
  set(CURLOPT_HTTPHEADER, headers_.get());
  if (method_ == "POST") {
    const bool filled = carriesBody();
    set(CURLOPT_POST, 1L);
    set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(filled ? request_.body->size() : 0));
    // Without a copy: the request outlives the transfer.
    set(CURLOPT_POSTFIELDS, filled ? reinterpret_cast<const char*>(request_.body->data()) : "");
  } else {
    set(CURLOPT_HTTPGET, 1L);
  }
}

CURLcode CurlExchange::transfer() {
  const Transfer held(channel_.multi(), easy_.get());
  for (;;) {
    int underWay = 0;
    check(curl_multi_perform(channel_.multi(), &underWay));
    CURLcode result = CURLE_ABORTED_BY_CALLBACK;
    if (hasEnded(result) || isOver()) {
      return result;
    }
    waitForNetwork();
  }
}

bool CurlExchange::hasEnded(CURLcode& result) const {
  int left = 0;
  const CURLMsg* const message = curl_multi_info_read(channel_.multi(), &left);
  if (message != nullptr) {
    result = message->data.result;
  }
  return message != nullptr;
}

void CurlExchange::waitForNetwork() const {
  using std::chrono::milliseconds;
  // Rounded up: waking a moment too early would be useless.
  const auto left = std::chrono::ceil<milliseconds>(request_.deadline - clock_.steadyNow());
  const auto longest = std::chrono::milliseconds(std::chrono::minutes(1));
  const auto span = std::clamp(left, milliseconds(0), longest);
  check(curl_multi_poll(channel_.multi(), nullptr, 0, static_cast<int>(span.count()), nullptr));
}

HttpResult CurlExchange::resultOf(CURLcode result) const {
  if (result == CURLE_OK && hop_.headerEnded) {
    return {HttpResult::End::complete};
  }
  if (stopped_) {
    return {HttpResult::End::stopped};
  }
  if (isOver()) {
    return {closed_ ? HttpResult::End::closed : HttpResult::End::timedOut};
  }
  return {HttpResult::End::failed, failureText(result)};
}

std::string CurlExchange::failureText(CURLcode result) const {
  if (hop_.refused) {
    return "the server's certificate was not accepted";
  }
  if (hop_.requestSent && !hop_.heard) {
    return "the server closed the connection without an answer";
  }
  if (result == CURLE_OK) {
    return "the answer ended inside its header";
  }
  return errorText_[0] != '\0' ? &errorText_[0] : curl_easy_strerror(result);
}

// Redirects.

bool CurlExchange::carriesBody() const {
  return method_ == "POST" && request_.body && !request_.body->empty();
}

long CurlExchange::status() const {
  long code = 0;
  curl_easy_getinfo(easy_.get(), CURLINFO_RESPONSE_CODE, &code);
  return code;
}

bool CurlExchange::followsRedirect() const {
  const long code = status();
  curl_header* location = nullptr;
  const bool redirects = code == 301 || code == 302 || code == 303 || code == 307 || code == 308;
  return redirects &&
         curl_easy_header(easy_.get(), "Location", 0, CURLH_HEADER, -1, &location) == CURLHE_OK;
}

RequestTarget CurlExchange::redirectTarget() {
  if (++redirects_ > kMaximumRedirects) {
    throw std::runtime_error(fmt::format("more than {} redirects", kMaximumRedirects));
  }
  const char* address = nullptr;
  curl_easy_getinfo(easy_.get(), CURLINFO_REDIRECT_URL, &address);
  if (address == nullptr) {
    throw std::runtime_error("a redirect to no address");
  }
  if (status() != 307 && status() != 308) {
    method_ = "GET";
  }
  RequestTarget next = targetOf(address);
  // Once another host has determined the target, the fields are never sent again.
  ownHost_ = ownHost_ && next.hasOriginOf(target_);
  if (!ownHost_ && carriesBody()) {
    throw std::runtime_error(
        fmt::format("the redirect to https://{} would carry the request's body to another server",
                    next.origin));
  }
  return next;
}

// Callbacks of libcurl and OpenSSL.

template <class Question>
bool CurlExchange::goesOn(const Question& ask) {
  try {
    stopped_ = !ask();
  } catch (...) {
    stopped_ = true;
  }
  return !stopped_;
}

curl_socket_t CurlExchange::onOpenSocket(void* self, curlsocktype, curl_sockaddr* address) {
  auto& exchange = *static_cast<CurlExchange*>(self);
  // libcurl would send the request again by itself when a kept connection closes without an answer.
  // The server may have acted on the first one: a payment must not be made twice.
  if (exchange.hop_.requestSent) {
    return CURL_SOCKET_BAD;
  }
  try {
    return exchange.channel_.open(*address);
  } catch (...) {
    return CURL_SOCKET_BAD;
  }
}

int CurlExchange::onRequest(void* self, char*, char*, int, int) {
  auto& exchange = *static_cast<CurlExchange*>(self);
  // `requestSent`: libcurl would send the request a second time, over another kept connection.
  if (exchange.hop_.requestSent ||
      !exchange.goesOn([&] { return exchange.delegate_.mayBeSent(); }) || exchange.isOver()) {
    return CURL_PREREQFUNC_ABORT;
  }
  exchange.hop_.requestSent = true;
  return CURL_PREREQFUNC_OK;
}

std::size_t CurlExchange::onHeader(char* line, std::size_t unit, std::size_t count, void* self) {
  auto& exchange = *static_cast<CurlExchange*>(self);
  exchange.hop_.heard = true;
  const std::size_t size = unit * count;
  const std::string_view text(line, size);
  const bool blank = text == "\r\n" || text == "\n";
  const long status = exchange.status();
  // Report the status at the end of each header, so that a redirect counts before its target has
  // answered. Informational answers (1xx) are no response; after the body there may come a trailer.
  if (!blank || status < 200 || std::exchange(exchange.hop_.headerEnded, true)) {
    return size;
  }
  return exchange.goesOn([&] { return exchange.delegate_.didReceiveResponse(status); }) ? size : 0;
}

std::size_t CurlExchange::onData(char* bytes, std::size_t unit, std::size_t count, void* self) {
  auto& exchange = *static_cast<CurlExchange*>(self);
  exchange.hop_.heard = true;
  const std::span piece(reinterpret_cast<const std::uint8_t*>(bytes), unit * count);
  const bool goesOn = exchange.followsRedirect() ||
                      exchange.goesOn([&] { return exchange.delegate_.didReceiveData(piece); });
  return goesOn ? piece.size() : 0;
}

CURLcode CurlExchange::onTlsContext(CURL*, void* context, void* self) {
  auto* tls = static_cast<SSL_CTX*>(context);
  // libcurl writes session keys to the file that the variable SSLKEYLOGFILE names. No environment
  // may reveal those of a payment.
  SSL_CTX_set_keylog_callback(tls, nullptr);
  // A further handshake on the same connection would ask an exchange that may be gone.
  SSL_CTX_set_options(tls, SSL_OP_NO_RENEGOTIATION | SSL_OP_CLEANSE_PLAINTEXT);
  // The connection keeps its buffers: what has been read from them is wiped already, and wiping all
  // of them on release would take as long as the rest of the work for a request.
  SSL_CTX_clear_mode(tls, SSL_MODE_RELEASE_BUFFERS);
  SSL_CTX_set_cert_verify_callback(tls, &onCertificates, self);
  return CURLE_OK;
}

int CurlExchange::onCertificates(X509_STORE_CTX* presented, void* self) {
  auto& exchange = *static_cast<CurlExchange*>(self);
  bool trusted = false;
  try {
    SystemTrust trust(X509_STORE_CTX_get0_cert(presented), X509_STORE_CTX_get0_untrusted(presented),
                      exchange.target_.host);
    trusted = exchange.delegate_.trusts(&trust);
  } catch (...) {
    trusted = false;
  }
  exchange.hop_.refused = !trusted;
  X509_STORE_CTX_set_error(presented, trusted ? X509_V_OK : X509_V_ERR_APPLICATION_VERIFICATION);
  return trusted ? 1 : 0;
}

}  // namespace orlix
