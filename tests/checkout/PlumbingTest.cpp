// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/checkout/AlertWindow.h"
#include "orlixkit/checkout/OXPresentationController.h"
#include "orlixkit/checkout/OXUtil.h"
#include "orlixkit/checkout/OrlixViewController.h"
#include "orlixkit/ui/Containers.h"
#include "tests/phone/Phone.h"

namespace orlix::test {

namespace {

std::shared_ptr<Window> windowWith(bool key, bool hidden = false, double alpha = 1,
                                   bool normalLevel = true) {
  const auto window = std::make_shared<Window>(Host::current().application());
  window->setRootViewController(std::make_shared<ViewController>());
  window->key = key;
  window->hidden = hidden;
  window->alpha = alpha;
  window->normalLevel = normalLevel;
  return window;
}

void expectLook(const View& view, bool inBrandFonts) {
  for (const auto& part : view.subviews()) {
    const auto button = std::dynamic_pointer_cast<Button>(part);
    const auto label = button ? button->titleLabel() : std::dynamic_pointer_cast<Label>(part);
    if (button && button->tag() != 9999) {
      EXPECT_TRUE(button->borderWidth() == 1 && button->borderColor() == kWhite &&
                  button->cornerRadius() == 5 && button->backgroundColor() == kClear &&
                  label->textColor() == kWhite)
          << label->text();
    }
    if (label) {
      EXPECT_EQ(label->font().name.starts_with("Inter-"), inBrandFonts) << label->text();
    }
    expectLook(*part, inBrandFonts);
  }
}

}  // namespace

TEST(Look, IsTheSameOnEveryScreen) {
  Phone phone;
  for (const char* name : {"Waiting", "Product", "SecureCode", "Activation", "CountryCode",
                           "ActivationCode", "MsisdnRelink", "AddCard", "CardValidation", "Cards",
                           "WalletManagement", "TermsAndConditions", "TermsAndConditionChange"}) {
    SCOPED_TRACE(name);
    const auto made = phone.host.application().storyboard().make(name);
    const auto screen = made->visibleChild() ? made->visibleChild() : made;
    screen->loadViewIfNeeded();
    screen->viewWillAppear();
    const Color shown = screen->view()->backgroundColor();
    EXPECT_NEAR(shown.red * 255, 27, 0.1);
    EXPECT_NEAR(shown.green * 255, 30, 0.1);
    EXPECT_NEAR(shown.blue * 255, 38, 0.1);
    // The payment screen is the one that keeps the fonts of its storyboard.
    expectLook(*screen->view(), screen->identifier() != "Product");
  }
}

TEST(Look, AScreenIsACardOverTheDimmedHost) {
  Phone phone;
  phone.showPaymentScreen();
  const auto card = std::dynamic_pointer_cast<OXPresentationController>(
      phone.host.topController()->presentationController());
  ASSERT_TRUE(card);
  const auto dimming = card->dimmingView();
  const Size whole = phone.host.application().mainScreenSize();
  EXPECT_EQ(dimming->backgroundColor(), (Color{0, 0, 0, 0.4}));
  EXPECT_EQ(dimming->frame(), (Rect{0, 0, whole.width, whole.height}));
  EXPECT_EQ(dimming->alpha(), 1);
  phone.act("cancelAction");
  phone.host.runUntilIdle();
  EXPECT_EQ(dimming->alpha(), 0);
}

TEST(Look, AnAlertIsInTheColoursAndFontsOfTheBrand) {
  Phone phone;
  OXUtil::showAlertWithTitle("Warning", "text");
  phone.host.runUntilAlert("Warning");
  const auto alert = std::dynamic_pointer_cast<AlertController>(phone.host.topController());
  const View& view = *alert->view();
  const Color dark{0.439, 0.443, 0.455, 1};
  EXPECT_EQ(view.backgroundColor(), (Color{0.106, 0.118, 0.149, 1}));
  EXPECT_TRUE(view.cornerRadius() == 5 && view.borderWidth() == 1 && view.borderColor() == dark);
  EXPECT_TRUE(view.tintColor() == kWhite && alert->textColor == dark);
  EXPECT_EQ(alert->titleFont, (Font{"Inter-Bold", 17}));
  EXPECT_EQ(alert->messageFont, (Font{"Inter-Regular", 15}));
}

TEST(Look, TheBrandsFontsAreRegisteredWithTheLibraryAndABrokenOneIsNamed) {
  Phone phone({.adapt = [](Ports& ports) {
    const auto bundle = std::make_shared<MemoryBundle>();
    bundle->add("Inter-Regular", "otf", toBytes("OTTO"));
    bundle->add("Inter-Bold", "otf", toBytes("true"));
    bundle->add("Inter-Light", "otf", toBytes("text"));
    ports.bundle = bundle;
  }});
  OXOrlix::load();
  EXPECT_EQ(phone.host.log().count("The resource Inter-Light.otf is no OpenType font."), 1U);
  OXOrlix::loadFontWithName("Inter-Bold");
  OrlixViewController::debugPrintFonts();
  EXPECT_TRUE(phone.host.log().contains("  Inter-Regular"));
  EXPECT_EQ(phone.host.log().count("  Inter-Bold"), 1U);
  EXPECT_FALSE(phone.host.log().contains("  Inter-Light"));
}

TEST(Look, ALabelTakesTheBrandsFontOfItsWeightAndKeepsItsSize) {
  const std::vector<std::pair<std::string, std::string>> fonts{{"Arial-Bold", "Inter-Bold"},
                                                               {"arial-LIGHT", "Inter-Light"},
                                                               {"Arial", "Inter-Regular"},
                                                               {"Bold", "Inter-Regular"}};
  for (const auto& [before, after] : fonts) {
    Label label;
    label.setFont({before, 12});
    OrlixViewController::changeFontForLabel(label);
    EXPECT_EQ(label.font(), (Font{after, 12})) << before;
  }
}

TEST(Look, OnlyAButtonWithTheTagForItKeepsItsOwn) {
  for (const auto& [tag, border] : std::vector<std::pair<int, double>>{{0, 1}, {9999, 0}}) {
    const auto view = std::make_shared<View>();
    const auto button = std::make_shared<Button>();
    button->setTag(tag);
    view->addSubview(button);
    OXUtil::styleButtonsForView(view);
    EXPECT_EQ(button->borderWidth(), border) << tag;
  }
}

TEST(Look, TheRibbonIsAtTheBottomOrAboveTheTabBarThatIsShown) {
  struct Case {
    std::string name;
    bool hasBar, hidden;
    double above;
  };
  for (const Case& row : {Case{"no bar", false, false, 0}, Case{"hidden", true, true, 0},
                          Case{"shown", true, false, 49}}) {
    Phone phone;
    const auto screen = std::make_shared<OrlixViewController>();
    const auto tabs = std::make_shared<TabBarController>();
    tabs->setChildren({screen}, 0);
    if (row.hasBar) {
      tabs->tabBar = std::make_shared<TabBar>();
      tabs->tabBar->setFrame({0, 0, 320, 49});
      tabs->tabBar->setHidden(row.hidden);
    }
    screen->addBottomRibbon();
    const double bottom = phone.host.application().mainScreenSize().height;
    EXPECT_EQ(screen->view()->subviews().back()->frame().y, bottom - row.above - 6) << row.name;
  }
}

TEST(Plumbing, AnAlertAskedForInTheBackgroundIsShownFromTheMainQueue) {
  Phone phone;
  bool atOnce = false;
  Host::current().ports().backgroundQueues->global(QualityOfService::high, [&] {
    AlertWindow::show(std::make_shared<AlertController>("Warning", "text"));
    atOnce = !phone.alert().empty();
  });
  phone.host.runUntilIdle();
  EXPECT_FALSE(atOnce);
  EXPECT_EQ(phone.alert(), "Warning: text");
}

TEST(Plumbing, AnAlertFindsTheApplicationsActiveWindow) {
  Phone phone;
  Application& application = phone.host.application();
  const auto background = windowWith(true);
  const auto firstVisible = windowWith(false);
  const auto secondVisible = windowWith(false);
  const auto keyOne = windowWith(true);
  const auto legacy = windowWith(true);
  const auto delegates = windowWith(false);
  const Scene inBackground{true, SceneState::background, {background}};
  const Scene noWindowScene{false, SceneState::foregroundActive, {background}};
  const Scene unseen{true,
                     SceneState::foregroundActive,
                     {windowWith(false, true), windowWith(false, false, 0),
                      windowWith(false, false, 1, false), firstVisible, secondVisible}};
  const Scene withKey{true, SceneState::foregroundInactive, {secondVisible, keyOne}};
  struct Case {
    std::string name;
    int version;
    std::vector<Scene> scenes;
    std::shared_ptr<Window> legacy, delegates, expected;
  };
  const std::vector<Case> cases{
      {"a scene's key window", 13, {inBackground, unseen, withKey}, legacy, delegates, keyOne},
      {"else the first seen", 17, {noWindowScene, unseen}, legacy, delegates, firstVisible},
      {"else the key window", 17, {inBackground, noWindowScene}, legacy, delegates, legacy},
      {"else the delegate's", 17, {}, nullptr, delegates, delegates},
      {"older platforms know no scenes", 12, {withKey}, legacy, delegates, legacy},
      {"none", 17, {}, nullptr, nullptr, nullptr},
  };
  for (const Case& row : cases) {
    application.platformVersion = row.version;
    application.connectedScenes = row.scenes;
    application.keyWindow = row.legacy;
    application.delegateWindow = row.delegates;
    EXPECT_EQ(AlertWindow::ox_activeApplicationWindow(), row.expected) << row.name;
  }
  application.clear();
  OXUtil::showAlertWithTitle("Warning", "text");
  EXPECT_TRUE(phone.host.log().contains(
      "OrlixKit: Unable to present alert because no active application window was found."));
}

}  // namespace orlix::test
