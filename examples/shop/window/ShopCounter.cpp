// SPDX-License-Identifier: Apache-2.0

#include "examples/shop/window/ShopCounter.h"

#include <QVariantMap>
#include <array>
#include <utility>

namespace orlix::shop {

namespace {

struct ShopArticle {
  const char* name;
  const char* detail;
  const char* price;
  const char* code;  ///< by which the wallet server knows it
  const char* picture;
};

constexpr std::array kArticles{
    ShopArticle{"Coffee and cake", "At the counter, from 8\u00a0to\u00a05", "R 25.00", "FIXED-25",
                "coffee.svg"},
    ShopArticle{"A good book", "Three hundred pages, signed", "R 149.90", "RICH", "book.svg"},
    ShopArticle{"Bicycle service", "Ready the day after", "R 999.99", "FIXED-999", "bike.svg"},
    ShopArticle{"Gift card", "You say what it is worth", "Any amount", "OPEN", "gift.svg"},
};

QVariant shown(const Notice& notice) {
  constexpr std::array kTones{"good", "bad", "neutral"};
  return QVariantMap{{"title", QString::fromStdString(notice.title)},
                     {"detail", QString::fromStdString(notice.detail)},
                     {"tone", kTones.at(static_cast<std::size_t>(notice.tone))}};
}

}  // namespace

ShopCounter::ShopCounter(std::shared_ptr<ViewController> hostScreen,
                         std::shared_ptr<Outcomes> outcomes, WalletVisit& visit, OXSystem system)
    : hostScreen_(std::move(hostScreen)),
      outcomes_(std::move(outcomes)),
      visit_(visit),
      system_(system) {
  visit_.onEnd = [this](const Notice& notice) { ended(notice); };
}

ShopCounter::~ShopCounter() { visit_.onEnd = {}; }

QVariantList ShopCounter::articles() const {
  QVariantList shown;
  for (const ShopArticle& article : kArticles) {
    shown.append(QVariantMap{{"name", article.name},
                             {"detail", article.detail},
                             {"price", article.price},
                             {"code", article.code},
                             {"picture", article.picture}});
  }
  return shown;
}

void ShopCounter::setLive(bool live) {
  system_ = live ? kLiveSystem : kTestSystem;
  Q_EMIT changed();
}

void ShopCounter::addMessage(const QString& text) {
  messages_.prepend(text);
  Q_EMIT changed();
}

std::shared_ptr<OXOrlix> ShopCounter::begin(const std::string& code) {
  if (busy_) {
    return nullptr;
  }
  busy_ = true;
  outcome_ = QVariant::fromValue(nullptr);
  Q_EMIT changed();
  return visit_.begin(code);
}

EntryRequest ShopCounter::request() const {
  return {
      .apiKey = "shop-key", .system = system_, .controller = hostScreen_, .delegate = outcomes_};
}

void ShopCounter::pay(int article) {
  const auto index = static_cast<std::size_t>(article);
  if (article < 0 || index >= kArticles.size()) {
    return;
  }
  if (const auto facade = begin(kArticles[index].code)) {
    facade->checkout({.code = kArticles[index].code,
                      .apiKey = "shop-key",
                      .system = system_,
                      .controller = hostScreen_,
                      .delegate = outcomes_});
  }
}

void ShopCounter::registerUser() {
  if (const auto facade = begin()) {
    facade->preRegister(request());
  }
}

void ShopCounter::openWallet() {
  if (const auto facade = begin()) {
    facade->walletManagement(request());
  }
}

void ShopCounter::clearOutcome() {
  outcome_ = QVariant::fromValue(nullptr);
  Q_EMIT changed();
}

void ShopCounter::ended(const Notice& notice) {
  busy_ = false;
  outcome_ = shown(notice);
  Q_EMIT changed();
}

void ShopCounter::leftAlone() {
  if (busy_ && !hostScreen_->presentedViewController()) {
    visit_.leftAlone();
  }
}

}  // namespace orlix::shop
