// SPDX-License-Identifier: Apache-2.0

#include "sandbox/Issuer.h"

#include <algorithm>
#include <array>
#include <utility>

#include "sandbox/Formats.h"
#include "sandbox/Pages.h"

namespace orlix::sandbox {

namespace {

constexpr std::string_view kPassingCode = "123456";
constexpr std::string_view kFailingCode = "000000";
constexpr int kTriesForOnePage = 3;
constexpr size_t kLargePage = 5'000'000;

HttpAnswer html(std::string page, int status = 200) {
  HttpAnswer answer{
      .status = status, .body = std::move(page), .contentType = "text/html; charset=utf-8"};
  answer.headers.emplace_back("Cache-Control", "no-store");
  return answer;
}

HttpAnswer badPage(std::string_view reason) {
  return html(waitingPage("This page cannot be shown", reason), 400);
}

}  // namespace

bool Issuer::owns(const HttpRequest& request) {
  constexpr std::array<std::string_view, 4> kPaths{"/issuer/acs", "/issuer/otp",
                                                   "/vello/secure_code.jsp", "/terms/tavlo.html"};
  return std::find(kPaths.begin(), kPaths.end(), request.path) != kPaths.end();
}

HttpAnswer Issuer::answer(const HttpRequest& request) {
  const std::lock_guard lock(state_.mutex);
  if (request.path == "/terms/tavlo.html") return terms();
  if (request.method != "POST") return badPage("This address takes a posted form.");
  if (request.path == "/vello/secure_code.jsp") return termination(request);
  const std::string termUrl = request.field("TermUrl");
  if (termUrl != state_.origin + "/vello/secure_code.jsp" && !isTerminationAddress(termUrl))
    return badPage("TermUrl is not the wallet's.");
  return request.path == "/issuer/acs" ? accessControl(request) : oneTimeCode(request);
}

HttpAnswer Issuer::accessControl(const HttpRequest& request) {
  const Authentication* found = state_.authentications.findByPaReq(request.field("PaReq"));
  if (found == nullptr) return badPage("The PaReq is not known.");
  return html(issuerPage({.action = "/issuer/otp",
                          .paReq = found->paReq,
                          .termUrl = request.field("TermUrl"),
                          .md = request.field("MD"),
                          .amount = found->amount}));
}

HttpAnswer Issuer::oneTimeCode(const HttpRequest& request) {
  Authentication* found = state_.authentications.findByPaReq(request.field("PaReq"));
  if (found == nullptr) return badPage("The PaReq is not known.");
  const std::string otp = request.field("otp");
  const bool cancelled = request.field("choice") == "cancel";
  if (found->behaviour == "neverReturns" && !cancelled) {
    return html(waitingPage("First Sandbox Bank", "Please wait for your bank..."));
  }
  const bool passes = !cancelled && otp == kPassingCode;
  const bool mayTryAgain = !cancelled && !passes && otp != kFailingCode;
  if (mayTryAgain && ++found->wrongCodes < kTriesForOnePage) {
    return html(issuerPage({.action = "/issuer/otp",
                            .paReq = found->paReq,
                            .termUrl = request.field("TermUrl"),
                            .md = request.field("MD"),
                            .amount = found->amount,
                            .wrongCodes = found->wrongCodes}));
  }
  if (found->paRes.empty()) state_.authentications.end(*found, passes);
  return html(returningPage(request.field("TermUrl"), found->paRes, request.field("MD")));
}

HttpAnswer Issuer::termination(const HttpRequest& request) {
  const std::string paRes = request.field("PaRes");
  Authentication* found = state_.authentications.findByPaRes(paRes);
  if (found == nullptr) return html(terminationPage(paRes, false, 0));
  const bool again = found->behaviour == "twice" && found->terminationViews == 0;
  ++found->terminationViews;
  return html(terminationPage(paRes, again, found->behaviour == "largePage" ? kLargePage : 0));
}

HttpAnswer Issuer::terms() { return html(termsPage(state_.wallets.termsVersion())); }

}  // namespace orlix::sandbox
