#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "sandbox/Json.h"

namespace orlix::sandbox {

/// When the receipt of a payment is there to be polled, and what it says.
struct ReceiptPlan {
  std::string status = "SUCCESS";
  int pollsBefore = 0;     ///< Polls that find nothing yet; -1: it never comes.
  bool emptyBody = false;  ///< A poll that finds nothing has an empty body, not an object.
};

/// What goes wrong with every second purchase of a code, beginning with the first, so that the
/// user's "Retry" succeeds.
enum class PurchaseFault { none, serverError, hangUp, headerThenSilence, emptyBody };

/// A printed or scanned reference: its data and the behaviour that it triggers in the server.
struct Code {
  json::object info;   ///< The "codeInfo" of a lookup.
  std::string amount;  ///< The fixed amount; empty when the user gives it.
  std::string min;
  std::string max;
  std::string purchaseStatus = "SUCCESS";
  ReceiptPlan receipt;
  PurchaseFault purchaseFault = PurchaseFault::none;
  bool bigReference = false;  ///< Transaction identifiers beyond 2^53.
  bool withoutCards = false;  ///< The lookup answers with an empty card list.
  int lookupDelayMs = 0;
  std::string nextStart;          ///< What the device's next session start is answered with.
  bool forgetsSession = false;    ///< The session is forgotten at the request after the lookup.
  bool forbidsPurchases = false;  ///< Every purchase is answered 403 until faults are cleared.
};

/// The documented code of this name, or nothing: the server then answers without "codeInfo".
std::optional<Code> findCode(std::string_view name);

}  // namespace orlix::sandbox
