// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "orlixkit/ports/Bytes.h"
#include "orlixkit/protocol/Flow.h"
#include "orlixkit/protocol/KCVelloConnection.h"
#include "orlixkit/protocol/OMVelloDelegate.h"

namespace orlix {

/// Services that the session driver requires from the floors above it.
class OMVelloEnvironment {
 public:
  virtual ~OMVelloEnvironment() = default;
  /// Base address of the system that `OMVello::system` names. Any thread.
  virtual std::string velloUrl() = 0;
  /// Any thread.
  virtual std::string storageKeyForItem(const std::string& item) = 0;
  /// Any thread.
  virtual std::string deviceModel() = 0;
  /// The flow that a start belongs to. Main thread; null for a start outside any flow.
  virtual std::shared_ptr<const Flow> currentFlow() = 0;
  /// Main thread; also the three below.
  virtual void showAlertWithTitle(const std::string& title,
                                  const std::optional<std::string>& message) = 0;
  /// Both tasks run on the main thread.
  virtual void showNetworkErrorRetry(Task retry, Task cancel) = 0;
  virtual void showTemsAndConditionChangeScreen() = 0;
  virtual void returnUserDidCancel() = 0;
};

/// The session driver: owns the protocol client. A start makes a new client, opens its session off
/// the main thread and turns the result into the user's next step. A start superseded by a later
/// one reports nothing and does not change `connection`.
class OMVello {
 public:
  static OMVello& sharedOMVello();

  OMVello();
  ~OMVello();
  OMVello(const OMVello&) = delete;
  OMVello& operator=(const OMVello&) = delete;

  /// Set it once, before the first start.
  void setEnvironment(std::shared_ptr<OMVelloEnvironment> environment);

  /// Starts a session and returns at once. Main thread. The delegate is kept until the next start;
  /// it may be null. Throws std::logic_error when no environment has been set, std::system_error
  /// when no thread can be created.
  void initSessionWithLibKey(const std::string& libKey, std::int64_t system,
                             std::shared_ptr<OMVelloDelegate> delegate);
  /// Runs the current start (again) in the background. Any thread.
  void tryInitSession();
  /// Makes a new client and opens its session; blocks. Any but the main thread. Throws
  /// std::bad_alloc.
  void performInitSession();
  /// Offset of local time from UTC, such as "+02:00".
  std::string getTimeZone();
  /// Handles the user's cancel. Main thread.
  void cancel();
  /// Notifies the delegate, on the main queue. Any thread.
  void velloSessionEstablished();

  /// 0 live, any other value test. Any thread.
  std::int64_t system() const;
  /// The client of the current start; of the former one until the new one has been made; null
  /// before the first start. Any thread.
  std::shared_ptr<KCVelloConnection> connection() const;
  /// Makes the credentials of this device unreadable in `storage`, also before the first start has
  /// made its client, since an entry call for another customer may follow it at once. No effect
  /// before the first start. Throws NetworkException. Waits for no exchange; any thread.
  void resetCredentials(StorageInterface& storage);

 private:
  struct Start;

  void tryStart(const std::shared_ptr<Start>& start);
  /// The same after the user's retry; catches a failure to create a thread, as there is no caller
  /// to handle it.
  void tryAgain(const std::shared_ptr<Start>& start);
  void perform(const std::shared_ptr<Start>& start);
  std::shared_ptr<KCVelloConnection> newConnection(const Start& start);
  Serial serialFor(const Start& start) const;
  bool adopt(const std::shared_ptr<Start>& start, std::shared_ptr<KCVelloConnection>& client);
  void establish(const std::shared_ptr<Start>& start,
                 const std::shared_ptr<KCVelloConnection>& client);
  void report(const std::shared_ptr<Start>& start, Task onMain);
  void notify(const std::shared_ptr<Start>& start, void (OMVelloDelegate::*callback)());
  void reportEstablished(const std::shared_ptr<Start>& start);
  void showNotice(const std::shared_ptr<Start>& start, const std::optional<std::string>& message,
                  bool stopConnection);
  void offerRetry(const std::shared_ptr<Start>& start);
  void showRetry(const std::shared_ptr<Start>& start);
  bool isPresent(const std::shared_ptr<Start>& start) const;
  std::shared_ptr<Start> presentStart() const;
  /// Throws std::logic_error when none has been set.
  std::shared_ptr<OMVelloEnvironment> environment() const;

  mutable std::mutex lock_;
  std::shared_ptr<OMVelloEnvironment> environment_;
  std::shared_ptr<Start> start_;
  std::shared_ptr<KCVelloConnection> connection_;
};

}  // namespace orlix
