// SPDX-License-Identifier: Apache-2.0

// The entry operations with their arguments in order: each only names its arguments.

#include "orlixkit/checkout/OXOrlix.h"

namespace orlix {

void OXOrlix::checkoutWithCode(const std::string& code, double amount, const std::string& apiKey,
                               OXSystem system, Controller controller, Delegate delegate) {
  checkout({code, amount, apiKey, system, controller, delegate, {}, {}});
}

void OXOrlix::checkoutWithCode(const std::string& code, double amount, const std::string& apiKey,
                               OXSystem system, Controller controller, Delegate delegate,
                               std::optional<CustomerId> customerId) {
  checkout({code, amount, apiKey, system, controller, delegate, {}, customerId});
}

void OXOrlix::checkoutWithCode(const std::string& code, double amount, const std::string& apiKey,
                               OXSystem system, Controller controller, Delegate delegate,
                               std::optional<PreMSISDN> preMSISDN) {
  checkout({code, amount, apiKey, system, controller, delegate, preMSISDN, {}});
}

void OXOrlix::checkoutWithCode(const std::string& code, double amount, const std::string& apiKey,
                               OXSystem system, Controller controller, Delegate delegate,
                               std::optional<PreMSISDN> preMSISDN,
                               std::optional<CustomerId> customerId) {
  checkout({code, amount, apiKey, system, controller, delegate, preMSISDN, customerId});
}

void OXOrlix::preRegister(const std::string& apiKey, OXSystem system, Controller controller,
                          Delegate delegate) {
  preRegister({apiKey, system, controller, delegate, {}, {}});
}

void OXOrlix::preRegister(const std::string& apiKey, OXSystem system, Controller controller,
                          Delegate delegate, std::optional<CustomerId> customerId) {
  preRegister({apiKey, system, controller, delegate, {}, customerId});
}

void OXOrlix::preRegister(const std::string& apiKey, OXSystem system, Controller controller,
                          Delegate delegate, std::optional<PreMSISDN> preMSISDN) {
  preRegister({apiKey, system, controller, delegate, preMSISDN, {}});
}

void OXOrlix::preRegister(const std::string& apiKey, OXSystem system, Controller controller,
                          Delegate delegate, std::optional<PreMSISDN> preMSISDN,
                          std::optional<CustomerId> customerId) {
  preRegister({apiKey, system, controller, delegate, preMSISDN, customerId});
}

void OXOrlix::WalletManagement(const std::string& apiKey, OXSystem system, Controller controller,
                               Delegate delegate) {
  walletManagement({apiKey, system, controller, delegate, {}, {}});
}

void OXOrlix::WalletManagement(const std::string& apiKey, OXSystem system, Controller controller,
                               Delegate delegate, std::optional<CustomerId> customerId) {
  walletManagement({apiKey, system, controller, delegate, {}, customerId});
}

void OXOrlix::WalletManagement(const std::string& apiKey, OXSystem system, Controller controller,
                               Delegate delegate, std::optional<PreMSISDN> preMSISDN) {
  walletManagement({apiKey, system, controller, delegate, preMSISDN, {}});
}

void OXOrlix::WalletManagement(const std::string& apiKey, OXSystem system, Controller controller,
                               Delegate delegate, std::optional<PreMSISDN> preMSISDN,
                               std::optional<CustomerId> customerId) {
  walletManagement({apiKey, system, controller, delegate, preMSISDN, customerId});
}

}  // namespace orlix
