// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <map>
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
  std::string behaviour{};        ///< What it makes the server do, in words.
};

/// The documented codes, and those that were made while the server runs.
/// Thread: the caller locks.
class Codes {
 public:
  /// The code of this name, or nothing: the server then answers without "codeInfo".
  std::optional<Code> find(std::string_view name) const;

  /// Makes a code, or replaces one that was made: "merchant", and as one likes "code" (its name),
  /// "description", "amount" (none: the user gives it), "currency" and the flags of "codeInfo".
  /// Its name goes to `name`. What is wrong with the wish in words, or nothing.
  std::optional<std::string> make(const json::object& wish, std::string& name);

  /// Removes a code that was made; false when there is no such code.
  bool remove(const std::string& name);

  /// Every code with its name and what it does, those that were made first.
  json::array list() const;

 private:
  static constexpr size_t kKept = 1000;  ///< Codes that were made; no more can be.

  std::map<std::string, Code, std::less<>> made_;
  std::int64_t lastNumber_ = 0;
};

}  // namespace orlix::sandbox
