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

QVariant told(const QString& title, const QString& detail, const char* tone) {
  return QVariantMap{{"title", title}, {"detail", detail}, {"tone", QString::fromLatin1(tone)}};
}

QString reasonOf(const std::string& code) {
  if (code == "2") {
    return "Your card's bank did not accept the payment. Nothing was taken. You can try another "
           "card.";
  }
  if (code == "6") {
    return "This card takes no part in the bank's online check. Please choose another card.";
  }
  if (code == "7") {
    return "The price of this article is fixed in another place. Please tell the shop.";
  }
  return "This article cannot be paid for in the app. Please pay at the counter.";
}

QVariant inWords(const Outcome& outcome) {
  const std::string argument = outcome.argumentText().value_or("");
  const QString reference = "Reference " + QString::fromStdString(argument);
  if (outcome.callback == "orlixPaymentSucceededWithTransactionReference") {
    return told("Thank you, it is paid", reference, "good");
  }
  if (outcome.callback == "orlixPaymentFailedWithTransactionReference") {
    return told("The payment did not go through",
                "Nothing was taken. If you ask the shop about it, give this number.\n" + reference,
                "bad");
  }
  if (outcome.callback == "orlixError") {
    return told("This could not be paid", reasonOf(argument), "bad");
  }
  if (outcome.callback == "orlixUserRegistered") {
    return told("You are registered", "Your wallet is ready for your first purchase.", "good");
  }
  if (outcome.callback == "orlixUserCompletedWallet") {
    return told("Wallet closed", "Your changes are kept.", "neutral");
  }
  return told("Cancelled", "Nothing was taken.", "neutral");
}

}  // namespace

ShopCounter::ShopCounter(std::shared_ptr<ViewController> hostScreen,
                         std::shared_ptr<Outcomes> outcomes, OXSystem system)
    : hostScreen_(std::move(hostScreen)), outcomes_(std::move(outcomes)), system_(system) {
  outcomes_->onOutcome = [this](const Outcome& outcome) { ended(outcome); };
}

ShopCounter::~ShopCounter() { outcomes_->onOutcome = {}; }

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

std::shared_ptr<OXOrlix> ShopCounter::begin() {
  if (facade_) {
    return nullptr;
  }
  facade_ = OXOrlix::make();
  outcome_ = QVariant::fromValue(nullptr);
  Q_EMIT changed();
  return facade_;
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
  if (const auto facade = begin()) {
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

void ShopCounter::ended(const Outcome& outcome) {
  facade_.reset();
  outcome_ = inWords(outcome);
  Q_EMIT changed();
}

void ShopCounter::leftAlone() {
  if (facade_ && !hostScreen_->presentedViewController()) {
    facade_.reset();
    outcome_ =
        told("The wallet was closed", "Please check your bank before you pay again.", "neutral");
    Q_EMIT changed();
  }
}

}  // namespace orlix::shop
