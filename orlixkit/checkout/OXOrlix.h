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

/// The host application's identifier of its customer. A change of customer wipes the wallet's
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
  /// In currency units. The code or the user sets the amount when this is 0, negative, or not
  /// finite.
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

/// The facade for host applications. Create one per flow and keep it until the delegate's callback.
/// Main thread only.
///
/// An entry call replaces a flow that is still on screen: the replaced flow makes no callback and
/// sends no further request. The last entry call takes effect, also when it is made in a callback
/// or by an observer of the screens. No callback is made inside an entry call. A facade shows its
/// waiting screen only once per controller, unless its flow asked for the activation of the device.
///
/// Customers. When `customerId` differs from the last one, also of an earlier process, the stored
/// credentials of the previous entry call's system (live or test) are made unreadable before the
/// session starts. The first entry call of a process is an exception: it only stores the new
/// customer, and its flow still uses the stored credentials. If customers change between two runs,
/// or if you use both systems, call `deregisterUser` when a customer logs out: it wipes the
/// credentials of the last entry call's system. The last used card is kept; if the wallet does not
/// contain it, its first card is shown.
///
/// Errors. Entry calls throw NetworkException when the customer has changed and the previous
/// customer's credentials could not be wiped, std::runtime_error when the new customer could not be
/// stored, and std::invalid_argument for a code or an API key that is not UTF-8; no flow was
/// started then, and a running one continues. They throw std::bad_alloc when memory runs out and
/// std::system_error when no thread can be created; no flow is running then, and no callback
/// follows.
class OXOrlix : public OMVelloDelegate, public std::enable_shared_from_this<OXOrlix> {
 public:
  static std::shared_ptr<OXOrlix> make();

  void checkout(const CheckoutRequest& request);
  void preRegister(const EntryRequest& request);
  void walletManagement(const EntryRequest& request);

  /// Whether a purchase was sent in the flow of this facade's last entry call, and its result as
  /// far as it is known. Valid from the callback until the next entry call of this facade; also
  /// without a callback, when another flow has replaced this one or the host has removed the
  /// screens. `unknown` can change later, when an answer arrives after the user has left. `none`
  /// before the first entry call.
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

  /// Normalises a South African or international number to "+" and ASCII digits (E.164); an empty
  /// text stays empty.
  static std::string getSuggestedMSISDN(const std::string& number);
  static std::string getLibVelloApiVersion();
  /// Wipes this device's credentials for the last entry call's system, and confirms it in an alert.
  /// Before the first entry call of the process nothing is wiped, but the alert is shown. A running
  /// flow keeps its session. Throws NetworkException, without showing the alert, when the store
  /// could not be wiped.
  void reset();
  /// The same without the alert.
  void deregisterUser();
  /// Throws std::runtime_error when the customer could not be stored.
  void saveCustomerId(const std::string& customerId);
  /// Deregisters and stores the customer if it differs from the last one; does nothing without a
  /// customer.
  void checkCustomerId(const std::optional<CustomerId>& customerId);

  void showLoadingDialogFromController(const Controller& controller);
  void showScreen(const std::string& identifier, const Controller& fromController);
  static void hideLoadingDialog(const Controller& controller);

  /// Shows the first screen of the session's flow. `waiting`: the waiting screen, null after a
  /// retry; a code without a payment ends the flow only when it is given.
  static void loadCodeInfo(const Controller& waiting);
  /// Repeats the request to refresh the data: screens update themselves, no screen is shown and the
  /// flow does not end.
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
