// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "orlixkit/checkout/OXDelegates.h"
#include "orlixkit/checkout/PurchaseStatus.h"
#include "orlixkit/protocol/OMVelloDelegate.h"
#include "orlixkit/ui/ViewController.h"

namespace orlix {

class OXTransitioningDelegate;
class PurchaseLedger;

/// 0 selects the live server, any other value (1 by convention) the test server.
using OXSystem = std::int64_t;
inline constexpr OXSystem kLiveSystem = 0;
inline constexpr OXSystem kTestSystem = 1;

/// The customer, as the host application knows him. Another one than the last wipes the wallet's
/// credentials on this device; see OXOrlix.
struct CustomerId {
  std::string value;
};

/// A mobile number to suggest when the device is enrolled.
struct PreMSISDN {
  std::string value;
};

/// A checkout with its arguments by name.
struct CheckoutRequest {
  std::string code{};
  /// In currency units. 0 or less, and what is no finite number, leaves the amount to code and
  /// user.
  double amount = 0;
  std::string apiKey{};
  OXSystem system = kLiveSystem;
  std::shared_ptr<ViewController> controller{};
  std::shared_ptr<OXOrlixDelegate> delegate{};
  std::optional<PreMSISDN> preMSISDN{};
  std::optional<CustomerId> customerId{};
};

/// A pre-registration or a visit to the wallet.
struct EntryRequest {
  std::string apiKey{};
  OXSystem system = kLiveSystem;
  std::shared_ptr<ViewController> controller{};
  std::shared_ptr<OXOrlixDelegate> delegate{};
  std::optional<PreMSISDN> preMSISDN{};
  std::optional<CustomerId> customerId{};
};

/// Empty public type, kept for hosts that name it.
class OXSettings {};

/// The one class that a host application talks to. Make one per flow, keep it until the delegate
/// has heard the outcome. Main thread only.
///
/// An entry call takes the place of a flow that is still on screen: that flow's host hears nothing
/// more, and nothing more is sent for it. Of entry calls in succession, and of one that is made in
/// a callback or by an observer of the screens, the last one counts. No callback is made inside an
/// entry call. A facade that has shown a waiting screen shows none in its later entry calls on the
/// same controller, unless its flow asked for the activation of the device.
///
/// Customers. A `customerId` that differs from the one last seen in this process or an earlier one
/// makes the stored credentials unreadable before the session start, those of the system (live or
/// test) of the entry call before. The first entry call of a process is an exception: it only
/// remembers the new customer, and its flow still uses the credentials that are stored. A host that
/// lets customers change between two runs, or that uses both systems, calls `deregisterUser` when
/// the former customer leaves: it wipes the system of the last entry call. The last used card is
/// kept; a wallet that does not hold it shows its first card.
///
/// Entry calls throw NetworkException when the customer has changed and the former one's wallet
/// could not be wiped, std::runtime_error when the new customer could not be stored, and
/// std::invalid_argument for a code or an API key that is not UTF-8: nothing has begun then, and a
/// flow that was there goes on. When memory runs out in an entry call it throws std::bad_alloc, and
/// when no thread can be had std::system_error: no flow is under way then and no host hears
/// anything.
class OXOrlix : public OMVelloDelegate, public std::enable_shared_from_this<OXOrlix> {
 public:
  static std::shared_ptr<OXOrlix> make();

  void checkout(const CheckoutRequest& request);
  void preRegister(const EntryRequest& request);
  void walletManagement(const EntryRequest& request);

  /// Whether a purchase was sent in the flow of this facade's last entry call, and what is known of
  /// it. Ask in the callback or after it, until the next entry call of this facade; also when no
  /// callback came, because another flow has taken the place of this one or the host has removed
  /// the screens. `unknown` may later become another state, when an answer arrives after the user
  /// has left. `none` before the first entry call.
  PurchaseStatus purchaseStatus() const;

  using Controller = std::shared_ptr<ViewController>;
  using Delegate = std::shared_ptr<OXOrlixDelegate>;
  void checkoutWithCode(const std::string& code, double amount, const std::string& apiKey,
                        OXSystem system, Controller controller, Delegate delegate);
  void checkoutWithCode(const std::string& code, double amount, const std::string& apiKey,
                        OXSystem system, Controller controller, Delegate delegate,
                        std::optional<CustomerId> customerId);
  void checkoutWithCode(const std::string& code, double amount, const std::string& apiKey,
                        OXSystem system, Controller controller, Delegate delegate,
                        std::optional<PreMSISDN> preMSISDN);
  void checkoutWithCode(const std::string& code, double amount, const std::string& apiKey,
                        OXSystem system, Controller controller, Delegate delegate,
                        std::optional<PreMSISDN> preMSISDN, std::optional<CustomerId> customerId);
  void preRegister(const std::string& apiKey, OXSystem system, Controller controller,
                   Delegate delegate);
  void preRegister(const std::string& apiKey, OXSystem system, Controller controller,
                   Delegate delegate, std::optional<CustomerId> customerId);
  void preRegister(const std::string& apiKey, OXSystem system, Controller controller,
                   Delegate delegate, std::optional<PreMSISDN> preMSISDN);
  void preRegister(const std::string& apiKey, OXSystem system, Controller controller,
                   Delegate delegate, std::optional<PreMSISDN> preMSISDN,
                   std::optional<CustomerId> customerId);
  void WalletManagement(const std::string& apiKey, OXSystem system, Controller controller,
                        Delegate delegate);
  void WalletManagement(const std::string& apiKey, OXSystem system, Controller controller,
                        Delegate delegate, std::optional<CustomerId> customerId);
  void WalletManagement(const std::string& apiKey, OXSystem system, Controller controller,
                        Delegate delegate, std::optional<PreMSISDN> preMSISDN);
  void WalletManagement(const std::string& apiKey, OXSystem system, Controller controller,
                        Delegate delegate, std::optional<PreMSISDN> preMSISDN,
                        std::optional<CustomerId> customerId);

  /// "+" and the digits of a South African or international number (E.164), those of any script
  /// written as 0 to 9; an empty text stays empty.
  static std::string getSuggestedMSISDN(const std::string& number);
  static std::string getLibVelloApiVersion();
  /// Makes this device unknown to the wallet of the last entry call's system, and says so in an
  /// alert. Before the first entry call of the process nothing is wiped, and the alert is shown all
  /// the same. A flow under way keeps its session. Throws NetworkException, without the alert, when
  /// the store could not be wiped.
  void reset();
  /// The same without a word.
  void deregisterUser();
  /// Throws std::runtime_error when it could not be stored.
  void saveCustomerId(const std::string& customerId);
  /// Deregisters and stores the customer when it is not the one last seen; does nothing for none.
  void checkCustomerId(const std::optional<CustomerId>& customerId);

  void showLoadingDialogFromController(const Controller& controller);
  void showScreen(const std::string& identifier, const Controller& fromController);
  static void hideLoadingDialog(const Controller& controller);

  /// The first screen of the session's flow. `waiting`: the waiting screen, none after a retry. A
  /// code that stands for nothing ends the flow only when it is given.
  static void loadCodeInfo(const Controller& waiting);
  /// The same request, for the sake of the data alone: the screens at hand take over what has
  /// changed, none is shown and nothing ends.
  static void reloadData();
  static void loadCards();
  static void loadWallet();

  /// Registers the brand's fonts, once per host.
  static void load();
  static void loadFontWithName(const std::string& name);
  static void printFonts();

  void velloNotActivated() override;
  void velloSessionEstablished() override;

 private:
  struct Entry;
  void begin(const Entry& entry);
  void start(const Entry& entry);
  void abandonStart();
  bool endFormerFlow(const Controller& controller);
  void forgetWaitingScreenOfAnotherPlace(const Controller& controller);
  void present(const Controller& screen, const Controller& fromController);

  std::shared_ptr<OXTransitioningDelegate> transitioningDelegate_;
  Controller waitingController_;
  std::shared_ptr<const PurchaseLedger> purchases_;  ///< of the last entry call's flow
  std::uint64_t hostNumber_ = 0;  ///< of the host that `waitingController_` belongs to
};

}  // namespace orlix
