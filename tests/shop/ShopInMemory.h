// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <sstream>
#include <string>

#include "examples/shop/HeadlessDriver.h"
#include "examples/shop/Shop.h"
#include "orlixkit/testing/MemoryHost.h"

namespace orlix::shop {

/// The shop on a phone in memory, in virtual time.
class ShopInMemory {
 public:
  /// Runs these lines. Empty when every one of them held, else the reason.
  std::string run(const std::string& lines) {
    try {
      std::istringstream text(lines);
      WholeScript script(text);
      shop_.run(script, driver_);
      return "";
    } catch (const ScriptError& error) {
      return error.what();
    }
  }

  MemoryHost& phone() { return phone_; }
  std::string lines() const { return out_.str(); }
  std::string progress() const { return progress_.str(); }

 private:
  // The phone only lends its ports: the shop makes a host of its own of them.
  Ports ports_;
  MemoryHost phone_{
      {.install = [this](const std::shared_ptr<Host>& host) { ports_ = host->ports(); }}};
  std::ostringstream out_;
  std::ostringstream progress_;
  Shop shop_{{.server = "https://wallet.example/vello",
              .anchor = {},
              .state = {},
              .location = {},
              .terms = "https://wallet.example/terms/tavlo.html",
              .script = {},
              .snapshots = {}},
             ports_,
             out_,
             progress_};
  HeadlessDriver driver_;
};

}  // namespace orlix::shop
