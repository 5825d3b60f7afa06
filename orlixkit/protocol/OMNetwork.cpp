// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/protocol/OMNetwork.h"

#include <algorithm>
#include <chrono>
#include <span>
#include <utility>

#include <fmt/format.h>

#include "orlixkit/host/Host.h"

namespace orlix {

namespace {

/// For the whole exchange.
constexpr std::chrono::seconds kTimeLimit{60};

/// What one exchange has brought so far.
class Answer : public HttpDelegate {
 public:
  explicit Answer(std::function<bool()> mayBeSent) : mayBeSent_(std::move(mayBeSent)) {}

  bool trusts(ServerTrust* trust) override;

  bool mayBeSent() override {
    const bool may = !mayBeSent_ || mayBeSent_();
    if (!may) {
      log("OMNetwork error. The request was withdrawn before it was sent.");
    }
    return may;
  }

  bool didReceiveResponse(std::int64_t statusCode) override {
    // A redirect brings a second answer; what the first one said is void.
    responseData_.clear();
    responseCode_ = statusCode;
    return true;
  }

  bool didReceiveData(std::span<const std::uint8_t> data) override {
    if (data.size() > OMNetwork::kLongestAnswer - responseData_.size()) {
      log(fmt::format("OMNetwork error. The answer is longer than {} bytes.",
                      OMNetwork::kLongestAnswer));
      return false;
    }
    responseData_.append(data);
    return true;
  }

  /// To be called once. The body of an answer that is not complete is dropped.
  NetworkResult take(bool isComplete) {
    NetworkResult result{responseCode_, std::nullopt};
    if (isComplete) {
      result.payload = std::move(responseData_);
    }
    return result;
  }

 private:
  const std::function<bool()> mayBeSent_;
  std::int64_t responseCode_ = 0;
  SecretBytes responseData_;
};

bool Answer::trusts(ServerTrust* trust) {
  if (trust == nullptr) {
    log("No server trust provided.");
    return false;
  }
  // False on purpose: the pinned certificates are added to the system's roots, so that the server
  // may change to a publicly trusted certificate without a new release.
  constexpr bool kAnchorsOnly = false;
  std::string error;
  const bool passed = trust->evaluate(OMNetwork::pinnedCertificates(), kAnchorsOnly, error);
  if (!passed && !error.empty()) {
    log("Certificate validation failed: " + error);
  }
  log(passed ? "SSL Pinning Successful: Certificate Chain Verified."
             : "SSL Pinning Failed: Certificate Chain Verification Failed.");
  return passed;
}

/// A token comes from the server as it likes. One with control characters could add header lines of
/// its own, so it is not sent; the server then answers as to a request without it.
void addToken(HttpRequest& request, const std::string& header,
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

HttpRequest requestFor(const std::string& url, const std::optional<SecretBytes>& payload,
                       const DataStore& dataStore) {
  HttpRequest request;
  request.url = url;
  request.method = "POST";
  request.headers.emplace_back("Content-Type", "application/json");
  addToken(request, "x-session-token1", dataStore.sessionId);
  addToken(request, "x-session-token2", dataStore.sessionId2);
  request.body = payload;
  return request;
}

NetworkResult exchange(HttpRequest request, std::function<bool()> mayBeSent) {
  using End = HttpResult::End;
  const Ports& ports = Host::current().ports();
  Answer answer(std::move(mayBeSent));
  request.deadline = ports.clock->steadyNow() + kTimeLimit;
  const HttpResult result = ports.httpClient->perform(request, answer);
  if (result.end == End::failed) {
    log("OMNetwork error. " + result.error);
  } else if (result.end == End::timedOut) {
    log(fmt::format("OMNetwork request timed out after {:.0f} seconds: {}",
                    std::chrono::duration<double>(kTimeLimit).count(), request.url));
  }
  return answer.take(result.end == End::complete);
}

}  // namespace

NetworkResult OMNetwork::post(const std::string& url, const std::optional<SecretBytes>& payload,
                              const DataStore& dataStore, std::function<bool()> mayBeSent) {
  try {
    NetworkResult result = exchange(requestFor(url, payload, dataStore), std::move(mayBeSent));
    wipeStack();  // this thread has sent the request and read the answer itself
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
