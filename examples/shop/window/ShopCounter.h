// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QObject>
#include <QStringList>
#include <QVariant>
#include <memory>

#include "examples/shop/Outcomes.h"
#include "examples/shop/WalletVisit.h"
#include "orlixkit/checkout/OXOrlix.h"

namespace orlix::shop {

/// What the shop's window shows and does: its articles, the ways into the wallet, and how the last
/// visit there ended, in words for the user. Main thread.
class ShopCounter : public QObject {
  Q_OBJECT
  Q_PROPERTY(QVariantList articles READ articles CONSTANT)
  Q_PROPERTY(bool live READ live WRITE setLive NOTIFY changed)
  Q_PROPERTY(bool busy READ busy NOTIFY changed)
  Q_PROPERTY(QVariant outcome READ outcome NOTIFY changed)
  Q_PROPERTY(QStringList messages READ messages NOTIFY changed)

 public:
  /// `visit` must outlive the counter.
  ShopCounter(std::shared_ptr<ViewController> hostScreen, std::shared_ptr<Outcomes> outcomes,
              WalletVisit& visit, OXSystem system);
  ~ShopCounter() override;

  QVariantList articles() const;
  bool live() const { return system_ == kLiveSystem; }
  void setLive(bool live);
  /// From an entry call to its end.
  bool busy() const { return busy_; }
  /// {title, detail, tone: "good", "bad" or "neutral"}, or null.
  QVariant outcome() const { return outcome_; }
  /// Text messages that came for the user, the newest first.
  QStringList messages() const { return messages_; }
  void addMessage(const QString& text);

  /// The wallet is no longer on the screen and its callbacks have been made. A few flows end
  /// without an outcome.
  void leftAlone();

  Q_INVOKABLE void pay(int article);
  Q_INVOKABLE void registerUser();
  Q_INVOKABLE void openWallet();
  Q_INVOKABLE void clearOutcome();

 Q_SIGNALS:
  void changed();

 private:
  /// None while the shop is busy.
  std::shared_ptr<OXOrlix> begin(const std::string& code = "");
  EntryRequest request() const;
  void ended(const Notice& notice);

  std::shared_ptr<ViewController> hostScreen_;
  std::shared_ptr<Outcomes> outcomes_;
  WalletVisit& visit_;
  OXSystem system_;
  bool busy_ = false;
  QVariant outcome_ = QVariant::fromValue(nullptr);
  QStringList messages_;
};

}  // namespace orlix::shop
