#include <map>
#include <string>

#include <gtest/gtest.h>

#include "tests/phone/Orders.h"

namespace orlix::test {

namespace {

const std::string kToPayment = "the server knows the device, checkout, session: ok, lookup: ok, ";
const std::string kToDelete = kToPayment + "Product.cardAction, Cards.delete 1, alert: Delete, ";
const std::string kToForm =
    kToPayment + "Product.cardAction, Cards.addCardAction, AddCard.proceedAction, ";
const std::string kToEnrolment =
    "checkout as A, session: ok, Activation.proceedAction, sms: ok, ActivationCode.proceedAction, ";
const std::string kPayDuringDelete = kToDelete + "Cards.row 0, Product.proceedAction, ";

/// Orders that once broke a rule, by what went wrong.
const std::map<std::string, std::string> kOrders{
    {"TwoPurchasesAfterALateDeletion",
     kPayDuringDelete + "delete: ok, lookup: ok, Product.proceedAction"},
    {"TwoPurchasesAfterALateValidation",
     kToPayment + "Product.cardAction, Cards.row 4, Product.proceedAction, "
                  "CardValidation.proceedAction, CardValidation.cancelAction, Product.cardAction, "
                  "Cards.row 0, Product.proceedAction, confirm: ok, lookup: ok, "
                  "Product.proceedAction"},
    {"TwoPurchasesAfterALateLink",
     kToForm + "bin: ok, AddCard.cancelAction, Product.proceedAction, link: ok, lookup: ok, "
               "Product.proceedAction"},
    {"TwoPurchasesAfterALateRelink",
     kToForm + "bin: ok, link: relink, MsisdnRelink.proceedAction, MsisdnRelink.back, "
               "AddCard.cancelAction, Product.proceedAction, link: ok, lookup: ok, "
               "Product.proceedAction"},
    {"APurchaseRefusedAfterCancel",
     kToPayment + "Product.proceedAction, Product.cancelAction, purchase: 403, session: ok"},
    {"APurchaseThatWaitsForASessionDuringCancel",
     kToDelete + "delete: 403, Cards.row 0, Product.proceedAction, Product.cancelAction, "
                 "session: ok"},
    {"APurchaseThatWaitsForASessionDuringTheNextCheckout",
     kToDelete + "delete: 403, Cards.row 0, Product.proceedAction, checkout, session: ok"},
    {"ALookupThatIsAlwaysRefused",
     "the server knows the device, the server forgets every session, checkout, session: ok"},
    {"AReceiptThatIsAlwaysRefused",
     kToPayment + "Product.proceedAction, purchase: ok, the server forgets every session, "
                  "receipt: 403, 60 s pass, 60 s pass"},
    {"AnActivationOfTheFormerCustomer",
     kToEnrolment + "checkout as B, session: ok, activate: ok, checkout again"},
    {"APurchaseOfTheFormerCustomer",
     "A has been enrolled, checkout as A, session: ok, lookup: ok, Product.proceedAction, "
     "checkout as B, session: ok, purchase: 403"},
    {"ALinkOfTheFormerCustomer",
     "A has been enrolled, checkout as A, session: ok, lookup: ok, Product.cardAction, "
     "Cards.addCardAction, AddCard.proceedAction, bin: ok, checkout as B, session: ok, link: 403"},
    {"TwoCustomersInImmediateSuccession", "A has been enrolled, checkout as B &, checkout as A"},
    {"TwoRequestsRefusedInOneSession",
     kPayDuringDelete + "delete: 403, session: ok, purchase: 403, session: ok, purchase: ok, "
                        "receipt: ok"},
    {"ALateLookupThatEndsAPayment",
     kToDelete + "delete: ok, Cards.row 0, Product.proceedAction, lookup: unusable"},
    {"AnOlderLookupAfterANewerOne",
     kToDelete + "delete: ok, Cards.delete 1, alert: Delete, delete: ok, lookup newest: ok, "
                 "lookup: ok"},
    {"ALateLinkDuringA3DSecureAuthentication",
     kToForm + "bin: ok, AddCard.cancelAction, Product.cardAction, Cards.row 3, "
               "Product.proceedAction, page: ok, page: returns, link: ok, authenticate: ok, "
               "receipt: ok, confirm: ok, page: ok, page: returns"},
    {"ALateBinDuringAPayment", kToForm + "AddCard.cancelAction, Product.proceedAction, bin: ok"},
    {"TheIndicatorOfALeftForm", kToForm + "bin: ok, AddCard.cancelAction"},
    {"TheAlertOfALeftForm",
     kToForm +
         "bin: ok, link: relink, MsisdnRelink.proceedAction, MsisdnRelink.back, link: failed"},
    {"ALateDeletionDuringAForm", kToDelete + "Cards.addCardAction, delete: ok, lookup: ok"},
    {"TwoAlertsDuringOneFade",
     kToDelete + "Cards.row 0, Product.proceedAction, hold the next animation, delete: lost, "
                 "purchase: lost, an animation ends, alert: Cancel, alert: Retry"},
};

}  // namespace

TEST(KnownOrders, BreakNoRuleAgain) {
  for (const auto& [name, order] : kOrders) {
    EXPECT_EQ(ruleBrokenBy(parseOrder(order)), "") << name;
  }
}

}  // namespace orlix::test
