#include "tests/onboarding/Flow.h"

#include <boost/json.hpp>
#include <fmt/format.h>

#include "orlixkit/checkout/OXUtil.h"
#include "orlixkit/resources/CompiledBundle.h"

namespace orlix {

namespace {

MemoryHostSettings withLibrary(MemoryHostSettings settings) {
  settings.install = installOrlixKit;
  return settings;
}

}  // namespace

std::string cardJson(std::int64_t cardId, const std::string& hint, const std::string& more) {
  return fmt::format(R"({{"cardId":{},"cardHint":"{}","cardType":"visa","method":"CNP"{}}})",
                     cardId, hint, more);
}

Flow::Flow(MemoryHostSettings settings) : host(withLibrary(std::move(settings))) {
  host.bundle().add("CountryCellCodes", "plist",
                    CompiledBundle().resource("CountryCellCodes", "plist").value());
  answer("/session/new", Answers::kSession);
  answer("/sms/send", Answers::kSmsSent);
  answer("/sms/activateSession", Answers::kSmsSent);
  answer("/card/link/", Answers::kLinked);
  answer("/card/delink/", R"({"status":"SUCCESS"})");
  answer("/card/bin/", Answers::kNothingNeeded);
  answer("/card/validate/", R"({"message":"Your card has been added"})");
  answer("/profile/updateTC", "{}");
  setCards({cardJson(5, "0005"), cardJson(9, "0009")});
}

void Flow::answer(const std::string& path, const std::string& body, Duration after) {
  host.connections().on(path, ServerReply().after(after).status(200).body(body));
}

void Flow::fail(const std::string& path, int times, const std::string& then) {
  const auto left = std::make_shared<int>(times);
  host.connections().on(path, [left, then](const RecordedRequest&) {
    return (*left)-- > 0 ? ServerReply().fail("unreachable") : ServerReply::of(200, then);
  });
}

void Flow::setCards(const std::vector<std::string>& cards) {
  const std::string list = fmt::format(R"({{"cards":[{}]}})", fmt::join(cards, ","));
  answer("/card/list/", list);
  answer("/lookup/query/v2/",
         fmt::format(R"({{"codeInfo":{{"code":"C","merchantName":"Baker","amountString":"25.00",)"
                     R"("amount":"25.00"}},"cardList":{}}})",
                     list));
}

void Flow::begin(Entry entry, const std::string& preMSISDN) {
  facade = OXOrlix::make();
  const PreMSISDN number{preMSISDN};
  if (entry == Entry::checkout) {
    facade->checkout({.code = "C",
                      .amount = 0,
                      .apiKey = "key",
                      .system = kTestSystem,
                      .controller = host.root(),
                      .delegate = application,
                      .preMSISDN = number,
                      .customerId = {}});
    return;
  }
  const WalletRequestArguments arguments{.apiKey = "key",
                                         .system = kTestSystem,
                                         .controller = host.root(),
                                         .delegate = application,
                                         .preMSISDN = number,
                                         .customerId = {}};
  if (entry == Entry::preRegister) {
    facade->preRegister(arguments);
  } else {
    facade->walletManagement(arguments);
  }
}

void Flow::begin(Entry entry, const std::string& screen, const std::string& preMSISDN) {
  begin(entry, preMSISDN);
  host.runUntilScreen(screen);
}

void Flow::beginEnrolment(Entry entry) {
  answer("/session/new", Answers::kNotActivated);
  begin(entry, "Activation", "0821234567");
  host.tap("proceedButton");
  host.runUntilScreen("ActivationCode");
}

void Flow::beginAddCard(Entry entry) {
  if (entry == Entry::checkout) {
    begin(entry, "Product", "");
    OXSession::currentSession()->showAddCardScreen();
    return;
  }
  setCards({});
  begin(entry, "AddCard", "");
}

void Flow::proceedWithCard(const std::string& number) {
  host.user().replaceAll("cardNumberField", number);
  host.user().replaceAll("cardHolderField", "A N Other");
  host.tap("proceedButton");
}

std::string Flow::alert() const {
  const auto alert = std::dynamic_pointer_cast<AlertController>(host.topController());
  return alert ? alert->title() + ": " + alert->message() : "";
}

std::string Flow::shown(const std::string& outlet) {
  return host.user().outlet<View>(outlet)->shownText();
}

bool Flow::indicatorIsUp() const {
  return Host::current().application().progressIndicator().visible();
}

std::size_t Flow::requestsTo(const std::string& path) {
  return host.connections().requestsTo(path).size();
}

std::string Flow::sent(const std::string& path, const std::string& key) {
  const auto requests = host.connections().requestsTo(path);
  if (requests.empty()) {
    return "(no request)";
  }
  const auto body = boost::json::parse(requests.back().body.value_or("{}")).as_object();
  const auto* value = body.if_contains(key);
  if (value == nullptr) {
    return "(no key)";
  }
  return value->is_string() ? std::string(value->as_string()) : boost::json::serialize(*value);
}

std::int64_t Flow::lastUsedCard() { return OXUtil::getLastUsedCardid(); }

}  // namespace orlix
