#include <gtest/gtest.h>

#include "orlixkit/checkout/AlertWindow.h"
#include "orlixkit/checkout/OXPresentationController.h"
#include "orlixkit/checkout/OXUtil.h"
#include "orlixkit/checkout/OrlixViewController.h"
#include "orlixkit/checkout/RotationAwareNavigationController.h"
#include "orlixkit/platform/ui/Containers.h"
#include "tests/checkout/Phone.h"

namespace orlix::test {

namespace {

class PlainScreen : public OrlixViewController {
 public:
  std::shared_ptr<Label> label(const std::string& name, const std::string& font) {
    const auto made = outlet<Label>(name);
    made->setFont({font, 11});
    return made;
  }
  std::shared_ptr<ImageView> ribbon() const {
    for (const auto& view : view()->subviews()) {
      const auto image = std::dynamic_pointer_cast<ImageView>(view);
      if (image && image->imageName() == "bottom_ribbon") {
        return image;
      }
    }
    return nullptr;
  }
};

std::shared_ptr<Window> windowWith(bool key, bool hidden = false, double alpha = 1,
                                   bool normalLevel = true) {
  const auto window = std::make_shared<Window>();
  window->rootViewController = std::make_shared<ViewController>();
  window->key = key;
  window->hidden = hidden;
  window->alpha = alpha;
  window->normalLevel = normalLevel;
  return window;
}

}  // namespace

TEST(Plumbing, AScreenStandsAsACardInTheMiddleOfTheDimmedOne) {
  Phone phone;
  phone.showPaymentScreen();
  const auto screen = phone.host.topController();
  const auto presentation =
      std::dynamic_pointer_cast<OXPresentationController>(screen->presentationController());
  ASSERT_NE(presentation, nullptr);
  EXPECT_EQ(presentation->frameOfPresentedViewInContainerView(), (Rect{37.5, 133.5, 300, 400}));
  EXPECT_FALSE(presentation->shouldAutorotate());
  EXPECT_FALSE(screen->shouldAutorotate());
  EXPECT_EQ(presentation->dimmingView()->alpha(), 1);
  EXPECT_EQ(presentation->dimmingView()->frame(), (Rect{0, 0, 375, 667}));
  EXPECT_EQ(presentation->containerView()->subviews().front(), presentation->dimmingView());
  phone.host.tap("cancelAction");
  EXPECT_EQ(presentation->dimmingView()->alpha(), 0);
}

TEST(Plumbing, AScreenWearsTheBrandsFontsAndItsRibbonWhileItIsUp) {
  Phone phone;
  const auto screen = std::make_shared<PlainScreen>();
  const auto bold = screen->label("bold", "Any-BOLD");
  const auto light = screen->label("light", "any-light");
  const auto other = screen->label("other", "Anything");
  OXUtil::showController(screen, phone.host.root());
  EXPECT_EQ(bold->font(), (Font{OXUtil::boldFont(), 11}));
  EXPECT_EQ(light->font(), (Font{OXUtil::lightFont(), 11}));
  EXPECT_EQ(other->font(), (Font{OXUtil::regularFont(), 11}));
  ASSERT_NE(screen->ribbon(), nullptr);
  EXPECT_EQ(screen->ribbon()->frame().y, 661);
  EXPECT_EQ(screen->ribbon()->frame().height, 6);
  EXPECT_NE(screen->presentationController(), nullptr);
  phone.host.root()->dismiss(true);
  EXPECT_EQ(screen->ribbon(), nullptr);
}

TEST(Plumbing, TheRibbonStandsAboveAShownTabBarAndInTheNavigationContainer) {
  Phone phone;
  const auto screen = std::make_shared<PlainScreen>();
  const auto container = std::make_shared<RotationAwareNavigationController>();
  container->setRoot(screen);
  const auto tabs = std::make_shared<TabBarController>();
  tabs->tabBar = std::make_shared<TabBar>();
  tabs->tabBar->setFrame({0, 0, 375, 49});
  tabs->setChildren({container}, 0);
  screen->addBottomRibbon();
  EXPECT_EQ(container->view()->subviews().back()->frame().y, 667 - 49 - 6);
  tabs->tabBar->setHidden(true);
  screen->addBottomRibbon();
  EXPECT_EQ(container->view()->subviews().back()->frame().y, 661);
  EXPECT_EQ(container->view()->subviews().size(), 1U);
  EXPECT_FALSE(container->shouldAutorotate());
}

TEST(Plumbing, AnAlertFindsTheApplicationsActiveWindow) {
  const auto background = windowWith(true);
  const auto firstVisible = windowWith(false);
  const auto secondVisible = windowWith(false);
  const auto keyOne = windowWith(true);
  const auto legacyKey = windowWith(true);
  const auto delegates = windowWith(false);
  using Scenes = std::vector<Scene>;
  const Scene inBackground{true, SceneState::background, {background}};
  const Scene noWindowScene{false, SceneState::foregroundActive, {background}};
  const Scene unseen{true,
                     SceneState::foregroundActive,
                     {windowWith(false, true), windowWith(false, false, 0),
                      windowWith(false, false, 1, false), firstVisible, secondVisible}};
  const Scene inactiveWithKey{true, SceneState::foregroundInactive, {secondVisible, keyOne}};
  struct Case {
    std::string name;
    int version;
    Scenes scenes;
    std::shared_ptr<Window> legacyKey, delegates, expected;
  };
  const std::vector<Case> cases{
      {"the first key window of a foreground scene",
       13,
       {inBackground, unseen, inactiveWithKey},
       legacyKey,
       delegates,
       keyOne},
      {"else the first that can be seen",
       17,
       {noWindowScene, unseen},
       legacyKey,
       delegates,
       firstVisible},
      {"else the key window", 17, {inBackground, noWindowScene}, legacyKey, delegates, legacyKey},
      {"else the delegate's", 17, {}, nullptr, delegates, delegates},
      {"older platforms know no scenes", 12, {inactiveWithKey}, legacyKey, delegates, legacyKey},
      {"none", 17, {}, nullptr, nullptr, nullptr},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(row.name);
    Phone phone;
    Application& application = phone.host.application();
    application.platformVersion = row.version;
    application.connectedScenes = row.scenes;
    application.keyWindow = row.legacyKey;
    application.delegateWindow = row.delegates;
    EXPECT_EQ(AlertWindow::ox_activeApplicationWindow(), row.expected);
  }
}

TEST(Plumbing, WithoutAWindowAnAlertIsDroppedWithALineInTheLog) {
  Phone phone;
  phone.host.application().clear();
  OXUtil::showAlertWithTitle("Warning", "text");
  EXPECT_TRUE(phone.host.log().contains(
      "OrlixKit: Unable to present alert because no active application window was found."));
}

TEST(Plumbing, AnAlertStandsOnTheTopControllerThatStays) {
  Phone phone;
  const auto child = std::make_shared<ViewController>();
  const auto container = NavigationController::make(child);
  EXPECT_EQ(AlertWindow::ox_topViewControllerFrom(container), child);
  const auto tabs = std::make_shared<TabBarController>();
  tabs->setChildren({std::make_shared<ViewController>(), container}, 1);
  EXPECT_EQ(AlertWindow::ox_topViewControllerFrom(tabs), child);

  phone.showPaymentScreen();
  EXPECT_EQ(AlertWindow::ox_topViewControllerFrom(phone.host.root())->identifier(), "Product");
  phone.host.tap("cancelAction");
  EXPECT_EQ(AlertWindow::ox_topViewControllerFrom(phone.host.root()), phone.host.root());
  OXUtil::showAlertWithTitle("Warning", "text");
  phone.host.runUntilAlert("Warning");
  EXPECT_EQ(phone.host.root()->presentedViewController(), phone.host.topController());
}

TEST(Plumbing, AnAlertMayBeShownOffTheMainThread) {
  Phone phone;
  phone.host.backgroundQueues().global(QualityOfService::background, [] {
    AlertWindow::show(std::make_shared<AlertController>("Warning", "text"), false);
  });
  phone.host.runUntilAlert("Warning");
}

}  // namespace orlix::test
