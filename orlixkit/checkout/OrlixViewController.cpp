// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/checkout/OrlixViewController.h"

#include <algorithm>
#include <cctype>

#include "orlixkit/checkout/OXOrlix.h"
#include "orlixkit/checkout/OXUtil.h"
#include "orlixkit/host/Host.h"
#include "orlixkit/ui/Containers.h"

namespace orlix {

namespace {

constexpr double kRibbonHeight = 6;

/// The brand's font of the weight that the name ends in, whatever its case.
std::string brandFontFor(std::string name) {
  std::transform(name.begin(), name.end(), name.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  if (name.ends_with("-bold")) {
    return OXUtil::boldFont();
  }
  return name.ends_with("-light") ? OXUtil::lightFont() : OXUtil::regularFont();
}

double heightOfShownTabBar(const ViewController& screen) {
  const std::shared_ptr<TabBarController> tabs = screen.tabBarController();
  return tabs && tabs->tabBar && !tabs->tabBar->hidden() ? tabs->tabBar->frame().height : 0;
}

}  // namespace

std::shared_ptr<Button> OrlixViewController::button(const std::string& outletName,
                                                    const std::string& title,
                                                    const std::string& actionName) {
  std::shared_ptr<Button> made = outlet<Button>(outletName);
  made->setTitle(title);
  made->onTouchUpInside = [this, actionName] { performAction(actionName); };
  return made;
}

void OrlixViewController::viewDidLoad() {
  view()->setBackgroundColor(OXUtil::primaryColor());
  changeFontForView(view());
}

void OrlixViewController::viewWillAppear() {
  OXUtil::styleButtonsForView(view());
  addBottomRibbon();
}

void OrlixViewController::viewDidAppear() {
  OXUtil::checkOrientationHeight(*this, isSecureScreen());
}

void OrlixViewController::viewWillDisappear() { removeBottomRibbon(); }

void OrlixViewController::addBottomRibbon() {
  removeBottomRibbon();
  // Measured on the whole screen, although the view is a smaller card: the ribbon belongs to the
  // bottom of the screen, and shows on those that fill it.
  const double bottom = Host::current().application().mainScreenSize().height;
  const double y = bottom - heightOfShownTabBar(*this) - kRibbonHeight;
  ribbonView_ = std::make_shared<ImageView>();
  ribbonView_->setFrame({0, y, view()->frame().width, kRibbonHeight});
  ribbonView_->setImageName("bottom_ribbon");
  const std::shared_ptr<NavigationController> container = navigationController();
  (container ? container->view() : view())->addSubview(ribbonView_);
}

void OrlixViewController::removeBottomRibbon() {
  if (ribbonView_) {
    ribbonView_->removeFromSuperview();
    ribbonView_.reset();
  }
}

void OrlixViewController::changeFontForView(const std::shared_ptr<View>& view) {
  if (const auto label = std::dynamic_pointer_cast<Label>(view)) {
    changeFontForLabel(*label);
  } else if (const auto button = std::dynamic_pointer_cast<Button>(view)) {
    changeFontForLabel(*button->titleLabel());
  } else {
    for (const auto& subview : view->subviews()) {
      changeFontForView(subview);
    }
  }
}

void OrlixViewController::changeFontForLabel(Label& label) {
  label.setFont({brandFontFor(label.font().name), label.font().size});
}

void OrlixViewController::debugPrintFonts() { OXOrlix::printFonts(); }

}  // namespace orlix
