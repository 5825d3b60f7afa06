// SPDX-License-Identifier: Apache-2.0

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/phone/Orders.h"

namespace orlix::test {

namespace {

const std::string kStart = "the server knows the device, checkout, session: ok, ";
const std::string kPayment = kStart + "lookup: ok, ";
const std::string kWallet = "the server knows the device, wallet, session: ok, list: ok, ";
const std::string kForm = kWallet + "WalletManagement.cardAction, Cards.addCardAction, ";
const std::string kRelink =
    kForm + "AddCard.proceedAction, bin: ok, link: relink, MsisdnRelink.proceedAction, ";

/// What can come in between wherever the user is.
std::vector<std::string> with(std::vector<std::string> events) {
  for (const char* common : {"session: ok", "session: lost", "lookup: ok", "lookup: lost",
                             "list: ok", "alert: Ok", "alert: Cancel", "alert: Retry", "checkout",
                             "checkout again", "hold the next animation", "an animation ends"}) {
    events.emplace_back(common);
  }
  return events;
}

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr std::size_t kLeftOut = 1;  // a sanitizer's build is ten times slower
#else
constexpr std::size_t kLeftOut = 0;
#endif

const std::vector<EveryOrder> kParts{
    {"payment", kPayment,
     with({"Product.proceedAction", "Product.cancelAction", "purchase: ok", "purchase: 403",
           "purchase: lost", "purchase: refused", "receipt: ok", "receipt: none", "receipt: lost",
           "2 s pass"}),
     5},
    {"enrolment", "checkout, session: ok, Activation.proceedAction, ",
     with({"Activation.proceedAction", "Activation.cancelAction", "sms: ok", "sms: failed",
           "sms: lost", "ActivationCode.proceedAction", "ActivationCode.cancelAction",
           "activate: ok", "activate: failed", "activate: lost"}),
     5},
    {"adding a card", kForm + "AddCard.proceedAction, ",
     with({"AddCard.proceedAction", "AddCard.cancelAction", "bin: ok", "bin: lost", "bin: account",
           "link: ok", "link: failed", "link: relink", "link: lost"}),
     4},
    {"relinking", kRelink,
     with({"MsisdnRelink.proceedAction", "MsisdnRelink.back", "AddCard.cancelAction", "link: ok",
           "link: failed", "link: relink", "link: lost"}),
     4},
    {"card list", kPayment + "Product.cardAction, ",
     with({"Cards.row 0", "Cards.delete 1", "Cards.cancelAction", "Cards.addCardAction",
           "alert: Delete", "delete: ok", "delete: 403", "delete: lost", "Product.cardAction"}),
     5},
    {"card validation", kPayment + "Product.cardAction, Cards.row 4, Product.proceedAction, ",
     with({"CardValidation.proceedAction", "CardValidation.cancelAction", "confirm: ok",
           "confirm: failed", "confirm: lost", "Product.proceedAction"}),
     5},
    {"wallet management", "the server knows the device, wallet, session: ok, ",
     with({"list: lost", "WalletManagement.cardAction", "WalletManagement.DoneClicked",
           "Cards.row 0", "Cards.cancelAction", "wallet", "wallet again"}),
     4},
    {"pre-registration", "pre-register, session: ok, Activation.proceedAction, sms: ok, ",
     with({"ActivationCode.proceedAction", "activate: ok", "list: lost", "Product.cardAction",
           "AddCard.proceedAction", "AddCard.cancelAction", "bin: ok", "link: ok"}),
     5},
    {"changed terms", "the server knows the device, checkout, session: terms, ",
     with({"TermsAndConditionChange.proceedAction", "TermsAndConditionChange.declineAction",
           "TermsAndConditionChange.descriptionTapped", "TermsAndConditions.backAction",
           "page: loads", "page: fails", "terms will be lost", "Product.cancelAction"}),
     4},
    {"3-D Secure payment", kPayment + "Product.cardAction, Cards.row 2, Product.proceedAction, ",
     with({"SecureCode.cancelAction", "page: ok", "page: error", "page: unsupported", "page: lost",
           "page: loads", "page: returns", "page: fails", "page: dies", "purchase: ok",
           "purchase: lost", "receipt: ok", "receipt: none", "2 s pass"}),
     4},
    {"3-D Secure authentication",
     kPayment + "Product.cardAction, Cards.row 3, Product.proceedAction, page: ok, page: returns, ",
     with({"3DAuthSecureCode.cancelAction", "page: ok", "page: returns", "authenticate: ok",
           "authenticate: lost", "authenticate: refused", "receipt: ok", "receipt: lost",
           "confirm: ok", "confirm: lost", "purchase: ok"}),
     4}};

}  // namespace

class EveryOrderTest : public testing::TestWithParam<std::size_t> {};

TEST_P(EveryOrderTest, BreaksNoRule) {
  EveryOrder part = kParts[GetParam()];
  part.depth -= kLeftOut;
  EXPECT_EQ(walkEveryOrder(part), "");
}

INSTANTIATE_TEST_SUITE_P(Flows, EveryOrderTest, testing::Range(std::size_t{0}, kParts.size()),
                         [](const auto& row) {
                           std::string name = kParts[row.param].name;
                           std::erase_if(name, [](char c) { return c == ' ' || c == '-'; });
                           return name;
                         });

TEST(EventsAtOnce, KeepTheRulesOfTheHostWhereThreadsOvertakeOneAnother) {
  const std::string pay = "Product.proceedAction";
  const std::string cancel = "Product.cancelAction";
  for (const auto& [before, events] : std::vector<std::pair<std::string, Order>>{
           {kPayment, {pay, "purchase: ok", "receipt: ok", cancel, pay}},
           {kPayment, {pay, "purchase: lost", "alert: Retry", "purchase: ok", cancel}},
           {kPayment, {pay, "purchase: 403", "session: lost", "alert: Cancel", cancel}},
           {kPayment, {pay, "purchase: ok", "checkout", cancel, "receipt: ok"}},
           {"the server knows the device, ", {"pre-register", "checkout", "session newest: ok"}}}) {
    EXPECT_EQ(meetAtOnce(before, events), "");
  }
}

}  // namespace orlix::test
