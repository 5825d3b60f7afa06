// SPDX-License-Identifier: Apache-2.0

#include "examples/shop/Notice.h"

namespace orlix::shop {

namespace {

using Tone = Notice::Tone;

Notice paid(const std::optional<std::string>& reference) {
  return {"Thank you, it is paid", reference ? "Reference " + *reference : "", Tone::good};
}

Notice notKnown(const VisitEnd& end) {
  const std::string what =
      end.purchase.reference ? "Reference " + *end.purchase.reference : "Code " + end.code;
  return {"We don't know yet whether the payment went through",
          "Please ask the shop before you pay again, and give this " +
              std::string(end.purchase.reference ? "number" : "code") + ".\n" + what,
          Tone::bad};
}

std::string reasonFor2(const PurchaseStatus& purchase) {
  if (purchase.state == PurchaseState::none) {
    return "Something went wrong on this device, and nothing was taken. Please try again, and "
           "restart the app if it happens once more.";
  }
  if (purchase.pinRefused) {
    return "Your card's bank did not accept the PIN, and nothing was taken. Please check the PIN, "
           "or use another card.";
  }
  return "Your card's bank did not accept the payment, and nothing was taken. Please try another "
         "card.";
}

Notice error(const std::string& code, const PurchaseStatus& purchase) {
  std::string reason;
  if (code == "2") {
    reason = reasonFor2(purchase);
  } else if (code == "6") {
    reason =
        "This card takes no part in its bank's online check, and nothing was taken. Please choose "
        "another card.";
  } else if (code == "7") {
    reason =
        "The price of this article is fixed in two places, and nothing was taken. Please pay at "
        "the counter, and tell the shop.";
  } else {
    reason =
        "This article cannot be paid for in the app, and nothing was taken. Please pay at the "
        "counter.";
  }
  return {"This could not be paid", reason, Tone::bad};
}

Notice cancelled(const VisitEnd& end) {
  if (end.obstacle == VisitEnd::Obstacle::noSession) {
    return {
        "The wallet could not be reached",
        "The connection failed, and nothing was taken. Please check your network and try again.",
        Tone::bad};
  }
  return {"Cancelled", "Nothing was taken.", Tone::neutral};
}

Notice withoutOutcome(const VisitEnd& end) {
  if (end.obstacle == VisitEnd::Obstacle::versionStopped) {
    return {"This version can no longer be used",
            "The wallet has stopped this version of the app, and nothing was taken. Please update "
            "the app and try again.",
            Tone::bad};
  }
  return {"The wallet was closed", "Nothing was taken. Please try again.", Tone::neutral};
}

}  // namespace

Notice noticeFor(const VisitEnd& end) {
  const std::string callback = end.outcome ? end.outcome->callback : "";
  const std::string argument = end.outcome ? end.outcome->argumentText().value_or("") : "";
  if (callback == "orlixPaymentSucceededWithTransactionReference") {
    return paid(argument);
  }
  if (end.purchase.state == PurchaseState::paid) {
    return paid(end.purchase.reference);
  }
  if (end.purchase.state == PurchaseState::unknown) {
    return notKnown(end);
  }
  if (callback == "orlixPaymentFailedWithTransactionReference") {
    return {
        "The payment did not go through",
        "Nothing was taken. If you ask the shop about it, give this number.\nReference " + argument,
        Tone::bad};
  }
  if (callback == "orlixError") {
    return error(argument, end.purchase);
  }
  if (callback == "orlixUserRegistered") {
    return {"You are registered", "Your wallet is ready for your first purchase.", Tone::good};
  }
  if (callback == "orlixUserCompletedWallet") {
    return {"Wallet closed", "Your changes are kept.", Tone::neutral};
  }
  return end.outcome ? cancelled(end) : withoutOutcome(end);
}

}  // namespace orlix::shop
