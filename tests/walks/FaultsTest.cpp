// SPDX-License-Identifier: Apache-2.0

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
const std::string kToCode =
    "session: ok, Activation.proceedAction, sms: ok, ActivationCode.proceedAction, ";
const std::string kToEnrolment = "checkout as A, " + kToCode;
const std::string kPayDuringDelete = kToDelete + "Cards.row 0, Product.proceedAction, ";

const std::string kSecureCode = kToPayment + "Product.cardAction, Cards.row 2, ";
const std::string k3DSecure =
    kToPayment + "Product.cardAction, Cards.row 3, Product.proceedAction, ";

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
    {"AWarningOfAFormThatIsLeftWhileItsIndicatorFades",
     kToForm + "bin: ok, at animate: cancel, link: failed"},
    {"AWarningOfARelinkThatIsLeftWhileItsIndicatorFades",
     kToForm +
         "bin: ok, link: relink, MsisdnRelink.proceedAction, at animate: cancel, link: failed"},
    {"AWarningOfAValidationThatIsLeftWhileItsIndicatorFades",
     kToPayment + "Product.cardAction, Cards.row 4, Product.proceedAction, "
                  "CardValidation.proceedAction, at animate: cancel, confirm: failed"},
    {"AWarningOfANumberWhoseCodeIsAskedForAlready",
     "checkout as B, session: ok, Activation.proceedAction, at dismiss: pay, reset, sms: ok, "
     "alert: Ok, sms: failed"},
    {"AnAuthenticationThatIsSentAgain",
     k3DSecure + "page: ok, page: returns, authenticate: 403, session: ok, authenticate: ok, "
                 "receipt: ok, confirm: failed, page: error, the host removes the alert"},
    {"ALateDeletionDuringAForm", kToDelete + "Cards.addCardAction, delete: ok, lookup: ok"},
    {"TwoAlertsDuringOneFade",
     kToDelete + "Cards.row 0, Product.proceedAction, hold the next animation, delete: lost, "
                 "purchase: lost, an animation ends, alert: Cancel, alert: Retry"},
    {"AnAlertAfterTheIssuersPageFailed", kSecureCode + "Product.proceedAction, page: error"},
    {"AnAlertOfTheIssuersPageUnderTheNextCheckout",
     kSecureCode + "hold the next animation, Product.proceedAction, page: error, checkout again"},
    {"CancelDuringTheValidationOfAnAuthenticatedCard",
     k3DSecure + "page: ok, page: returns, authenticate: ok, receipt: ok, "
                 "3DAuthSecureCode.cancelAction"},
    {"AnEntryCallDuringTheCancelOfAnIssuersPage",
     kSecureCode + "at animate: wallet, Product.proceedAction, SecureCode.cancelAction"},
    {"AnEntryCallDuringARefusedIssuersPage",
     kSecureCode + "at animate: wallet again, Product.proceedAction, page: unsupported"},
    {"AnEntryCallWhileTheRetryOfAnIssuersPageIsOffered",
     kSecureCode + "at animate: wallet again, Product.proceedAction, page: lost, session: refused, "
                   "alert: Ok, alert: Retry"},
    {"TheIndicatorOfAnIssuersPageThatTheHostRemoves",
     kSecureCode + "Product.proceedAction, the host removes the screens"},
    {"TheMaskOfALeftTermsPage",
     "checkout, session: ok, Activation.descriptionTapped &, TermsAndConditions.backAction"},
    {"ARetryWhoseFlowIsReplacedUnderTheAlert",
     kToPayment + "Product.proceedAction, purchase: lost, hold the next animation, alert: Retry, "
                  "checkout, an animation ends"},
    {"ALateLookupAtTheEndOfTheApplication",
     kToDelete + "Cards.row 0, delete: ok, Product.proceedAction, lookup: ok"},
    {"AnEntryCallDuringCancel",
     "the server knows the device, checkout, session: ok, lookup: ok, at animate: wallet, "
     "Product.proceedAction, Product.cancelAction"},
    {"AnEntryCallWhileTheFormerAlertIsWithdrawn",
     "the server knows the device, wallet, session: ok, list: ok, checkout again elsewhere, "
     "60 s pass, at dismiss: checkout again, checkout"},
    {"AnEntryCallWhileTheFormerIndicatorFades",
     "checkout, session: ok, Activation.proceedAction, at animate: pre-register again, "
     "pre-register elsewhere, session: ok"},
    {"TheFormerStartDuringAnEntryCall",
     "the server knows the device, wallet, at animate: run the main queue, session: ok &, "
     "checkout elsewhere"},
    {"NoThreadForTheFirstLookAtTheLastUsedCard",
     "the server knows the device, checkout again, session: ok, no thread, lookup: ok"},
    {"ATapOnAScreenThatTheHostHasRemoved",
     "checkout, session: ok, Activation.proceedAction, the host removes the screens, "
     "stray Activation.descriptionTapped"},
    {"AnActivationThatIsSentAgainUnderTheNextScreen",
     "wallet, session: ok, Activation.proceedAction, sms: ok, ActivationCode.proceedAction, "
     "at dismiss: pay, reset, activate: ok, alert: Ok"},
    {"TheIndicatorOfAnActivationThatFailsAgain",
     "the store is full, checkout, " + kToCode +
         "activate: ok, at progress: pay, activate: ok, activate: ok, activate: ok"},
    {"TwoRequestsUnderOneMask",
     "checkout, session: ok, Activation.proceedAction, sms: lost, sms: lost, at dismiss: pay, "
     "alert: Retry"},
    {"AnEntryCallWhileTheFormerWaitingScreenGoes",
     "the server knows the device, checkout elsewhere, session: notice, at dismiss: wallet, "
     "checkout elsewhere"},
};

void expectNoRuleBroken(const std::map<std::string, std::string>& orders) {
  for (const auto& [name, order] : orders) {
    EXPECT_EQ(ruleBrokenBy(parseOrder(order)), "") << name;
  }
}

}  // namespace

TEST(KnownOrders, BreakNoRuleAgain) { expectNoRuleBroken(kOrders); }

}  // namespace orlix::test
