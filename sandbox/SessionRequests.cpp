// SPDX-License-Identifier: Apache-2.0

// Opening a session, enrolling the device by SMS, accepting the terms.

#include <algorithm>
#include <array>
#include <utility>

#include <fmt/format.h>

#include "sandbox/Call.h"
#include "sandbox/Formats.h"
#include "sandbox/Random.h"

namespace orlix::sandbox {

namespace {

constexpr std::int64_t kTriesForOneCode = 5;

constexpr std::array<std::string_view, 7> kSessionStarts{
    "normal", "notice", "refused", "refusedEmpty", "refusedAbsent", "terms", "enrol"};

// Mobile numbers that are dealt with in a special way; see README.md.
constexpr std::string_view kRefusedNumber = "27820000001";
constexpr std::string_view kDeadCodeNumber = "27820000002";
constexpr std::string_view kUnknownTokenNumber = "27820000003";
constexpr std::string_view kEmptyTokenNumber = "27820000004";
constexpr std::string_view kNoTokenNumber = "27820000005";
constexpr std::string_view kFilledWalletNumber = "27820000010";

std::optional<std::string> complaintAboutDevice(const json::object& body) {
  if (!isDeviceSerial(textOf(body, "deviceSerial"))) return "\"deviceSerial\" is malformed";
  if (!isTimeZone(textOf(body, "timeZone"))) return "\"timeZone\" is malformed";
  if (!booleanOf(body, "hasDoubleSession")) return "\"hasDoubleSession\" is not true";
  const json::object& platform = body.at("platform").get_object();
  const Shape shape{{"appVersion"}, {"device"}, {"node"}, {"os"}, {"libKey"}, {"osVersion"}};
  if (auto wrong = complaint(platform, shape, "\"platform\"")) return wrong;
  if (textOf(platform, "node") != "TALU") return "\"node\" is not the one in the path";
  if (textOf(platform, "os") != "IOS") return "\"os\" is not IOS";
  const std::string named = fmt::format("iPhone TALU {}", textOf(platform, "appVersion"));
  if (textOf(body, "appVersion") != named) return fmt::format("\"appVersion\" is not {}", named);
  return std::nullopt;
}

Device deviceOf(State& state, const std::string& serial) {
  Device device = state.devices.find(serial).value_or(Device{.serial = serial});
  if (state.everyDeviceEnrolled && device.wallet.empty()) {
    device.wallet = "demonstration " + serial;
    state.wallets.ensure(device.wallet, true);
  }
  return device;
}

/// Answer to a session start of an enrolled device; see the table in README.md.
json::object startAnswer(State& state, const std::string& start, const std::string& wallet) {
  json::object out{{"activated", true}, {"allowConnection", true}, {"message", ""}};
  if (start == "notice") out["message"] = state.sessionMessage;
  if (start.rfind("refused", 0) == 0) out["allowConnection"] = false;
  if (start == "refused") out["message"] = "This version is no longer supported.";
  if (start == "refusedAbsent") out.erase("message");
  out["requestTCs"] = !state.wallets.acceptsPresentTerms(wallet);
  return out;
}

HttpAnswer newSession(Call& call) {
  State& state = call.state;
  if (const auto wrong = complaintAboutDevice(call.body)) return mistake(*wrong);

  Device device = deviceOf(state, textOf(call.body, "deviceSerial"));
  const std::string token = textOf(call.body, "ssToken");
  bool enrolled = !device.wallet.empty() &&
                  (state.everyDeviceEnrolled || (!token.empty() && token == device.token));
  std::string start = state.sessionStart;
  if (enrolled && device.nextStart.empty() && !state.nextSessionStart.empty()) {
    start = std::exchange(state.nextSessionStart, {});
  }
  if (enrolled && !device.nextStart.empty()) {
    start = device.nextStart;
    device.nextStart.clear();
  }
  if (enrolled && start == "enrol") {
    device.token.clear();
    enrolled = false;
  }
  if (enrolled && start == "terms") state.wallets.withdrawTerms(device.wallet);
  state.devices.put(device);

  // A device that is not enrolled gets a session all the same: it needs one to ask for an SMS.
  const Session& session = state.sessions.open(device.serial, enrolled ? device.wallet : "");
  json::object out{{"sessionId", session.token1},
                   {"sessionId2", session.token2},
                   {"pinKey", base64(session.pinKey)}};
  json::object rest = enrolled ? startAnswer(state, start, device.wallet)
                               : json::object{{"activated", false},
                                              {"allowConnection", true},
                                              {"message", ""},
                                              {"requestTCs", false}};
  for (json::key_value_pair& pair : rest) out[pair.key()] = std::move(pair.value());
  return answerWith(out);
}

HttpAnswer sendSms(Call& call) {
  const std::string msisdn = textOf(call.body, "msisdn");
  if (!isMobileNumber(msisdn)) {
    return mistake("\"msisdn\" is not of 7 to 15 digits in international form");
  }
  if (msisdn == kRefusedNumber) return answerWith({{"status", "REFUSED"}});
  const PendingSms sms{.msisdn = msisdn, .code = randomDigits(5)};
  call.state.devices.putSms(call.session->deviceSerial, sms);
  call.state.messages.add({.msisdn = sms.msisdn,
                           .code = sms.code,
                           .device = call.session->deviceSerial,
                           .sent = now()});
  call.log.sms(sms.msisdn, sms.code);
  return answerWith({{"status", "SUCCESS"}});
}

/// The device now belongs to the wallet of the number that it was enrolled with.
HttpAnswer enrol(Call& call, const std::string& msisdn) {
  State& state = call.state;
  state.devices.dropSms(call.session->deviceSerial);
  state.wallets.ensure(msisdn, msisdn == kFilledWalletNumber);

  const std::string token = randomHex(24);
  Device device = state.devices.find(call.session->deviceSerial)
                      .value_or(Device{.serial = call.session->deviceSerial});
  device.wallet = msisdn;
  device.token = msisdn == kUnknownTokenNumber ? "" : token;
  state.devices.put(device);
  call.session->wallet = msisdn;

  json::object out{{"status", "SUCCESS"}, {"newSsToken", token}};
  if (msisdn == kEmptyTokenNumber) out["newSsToken"] = "";
  if (msisdn == kNoTokenNumber) out.erase("newSsToken");
  return answerWith(out);
}

HttpAnswer activateSession(Call& call) {
  auto sms = call.state.devices.pendingSms(call.session->deviceSerial);
  const bool right =
      sms && sms->msisdn != kDeadCodeNumber && sms->code == textOf(call.body, "activationCode");
  if (right) return enrol(call, sms->msisdn);
  if (sms && ++sms->wrongTries < kTriesForOneCode) {
    call.state.devices.putSms(call.session->deviceSerial, *sms);
  } else {
    call.state.devices.dropSms(call.session->deviceSerial);
  }
  return answerWith({{"status", "INVALID_CODE"}});
}

HttpAnswer acceptTerms(Call& call) {
  call.state.wallets.acceptTerms(call.session->wallet);
  call.state.changed.notify_all();
  return answerWith({{"status", "SUCCESS"}});
}

}  // namespace

bool isSessionStart(std::string_view start) {
  return std::find(kSessionStarts.begin(), kSessionStarts.end(), start) != kSessionStarts.end();
}

std::string noSessionStart(std::string_view start) {
  return fmt::format("there is no session start \"{}\"; there are {}", start,
                     fmt::join(kSessionStarts, ", "));
}

const std::vector<Route>& sessionRoutes() {
  static const std::vector<Route> routes{
      {"/vello/session/new/TALU",
       Access::open,
       {{"deviceSerial"},
        {"appVersion"},
        {"hasDoubleSession", Kind::boolean},
        {"ssToken"},
        {"timeZone"},
        {"platform", Kind::object}},
       &newSession},
      {"/vello/sms/send", Access::session, {{"msisdn"}}, &sendSms},
      {"/vello/sms/activateSession", Access::session, {{"activationCode"}}, &activateSession},
      {"/vello/profile/updateTC", Access::enrolled, {}, &acceptTerms},
  };
  return routes;
}

}  // namespace orlix::sandbox
