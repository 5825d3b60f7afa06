// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <ostream>
#include <string>

#include "examples/shop/DeclarationWatch.h"
#include "examples/shop/EventLines.h"
#include "examples/shop/Outcomes.h"
#include "examples/shop/Script.h"
#include "examples/shop/ScriptSource.h"
#include "examples/shop/ShopDriver.h"
#include "examples/shop/Waiter.h"
#include "examples/shop/WalletVisit.h"
#include "examples/shop/WorkCount.h"

namespace orlix::shop {

/// Dependencies of a runner; all must outlive it.
struct ScriptStage {
  ShopDriver& driver;
  EventLines& events;
  std::shared_ptr<Outcomes> outcomes;
  WalletVisit& visit;
  const DeclarationWatch& declarations;
  Waiter& waiter;
  const WorkCount& work;
  std::ostream& progress;  ///< progress messages: each command as it begins, and long waits
  std::shared_ptr<ViewController> hostScreen;
  OXSystem system = kTestSystem;
};

/// Runs a script's commands one after the other on the installed host. Main thread only.
class ScriptRunner {
 public:
  explicit ScriptRunner(ScriptStage stage) : stage_(std::move(stage)) {}

  /// Throws LineError for the first line that is no command or whose command fails.
  void run(ScriptSource& source);

  static constexpr std::chrono::seconds kPatience{90};

 private:
  std::optional<ScriptLine> next(ScriptSource& source);

  void run(const HostCall& call);
  void run(const TypeText& command);
  void run(const EraseText& command);
  void run(const SetText& command);
  void run(const Tap& command);
  void run(const SelectRow& command);
  void run(const PressRowButton& command);
  void run(const PressAlertButton& command);
  void run(const PickEntry& command);
  void run(const PageType& command);
  void run(const PageClick& command);
  void run(const PageWait& command);
  void run(const WaitScreen& command);
  void run(const WaitAlert& command);
  void run(const WaitOutcome& command);
  void run(const WaitIdle& command);
  void run(const ExpectText& command);
  void run(const ExpectVisible& command);
  void run(const ExpectNoOutcome& command);
  void run(const Dump& command);
  void run(const Snapshot& command);

  /// Runs the pending main-queue tasks, as happens before a person can touch anything, and waits
  /// until transitions of screens and alerts have ended.
  void settle();
  /// Throws ScriptError when the condition does not hold in time.
  void waitUntil(const std::string& what, const std::function<bool()>& holds);

  ScriptStage stage_;
};

}  // namespace orlix::shop
