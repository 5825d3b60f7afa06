// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/testing/DeclarationCheck.h"

#include <algorithm>
#include <span>
#include <string_view>

#include <fmt/format.h>

#include "orlixkit/ui/AlertController.h"
#include "orlixkit/ui/Application.h"

namespace orlix {

namespace {

/// True when the text matches the pattern, whose "<…>" stands for any text.
bool matches(std::string_view text, std::string_view pattern) {
  const std::size_t open = pattern.find('<');
  if (open == std::string_view::npos) {
    return text == pattern;
  }
  const std::string_view before = pattern.substr(0, open);
  const std::string_view after = pattern.substr(pattern.find('>', open) + 1);
  return text.size() >= before.size() + after.size() && text.starts_with(before) &&
         text.ends_with(after);
}

std::string buttonsOf(const AlertController& alert) {
  std::string titles;
  for (const AlertAction& action : alert.actions()) {
    titles += (titles.empty() ? "" : ", ") + action.title;
  }
  return titles;
}

bool declares(std::span<const AlertText> declared, const AlertController& alert) {
  return std::any_of(declared.begin(), declared.end(), [&alert](const AlertText& text) {
    return alert.title() == text.title && matches(alert.message(), text.message) &&
           buttonsOf(alert) == text.buttons;
  });
}

/// The nearest screen below this controller, alerts skipped; null for the lowest.
std::shared_ptr<ViewController> screenBelow(const ViewController& controller) {
  std::shared_ptr<ViewController> below = controller.presentingViewController();
  while (below && below->isAlert()) {
    below = below->presentingViewController();
  }
  const std::shared_ptr<ViewController> child = below ? below->visibleChild() : nullptr;
  return child ? child : below;
}

}  // namespace

std::string DeclarationCheck::complaintAbout(const std::shared_ptr<ViewController>& presented) {
  std::erase_if(judged_, [](const auto& one) { return one.expired(); });
  const std::shared_ptr<ViewController> below = screenBelow(*presented);
  const std::string where = below ? below->identifier() : "";
  const Storyboard& storyboard = presented->application()->storyboard();
  const ScreenDeclaration declared =
      where.empty() ? ScreenDeclaration{.alerts = storyboard.alertsBeforeScreens}
                    : below->declaration();
  if (const auto alert = std::dynamic_pointer_cast<AlertController>(presented)) {
    if (!judged_.insert(alert).second || declares(declared.alerts, *alert) ||
        declares(storyboard.alertsOfAnyScreen, *alert)) {
      return "";
    }
    return fmt::format("the alert \"{}: {}\" ({}) is not declared by the screen \"{}\"",
                       alert->title(), alert->message(), buttonsOf(*alert), where);
  }
  const std::string& name = presented->identifier();
  if (where.empty() || name.empty() ||
      std::find(declared.segues.begin(), declared.segues.end(), name) != declared.segues.end()) {
    return "";
  }
  return fmt::format("the segue \"{}\" is not declared by the screen \"{}\"", name, where);
}

std::string DeclarationCheck::undeclaredHiding(const ViewController& screen) {
  const std::span<const HidingRule> rules = screen.declaration().hiding;
  const auto hasRule = [&](const std::shared_ptr<View>& view) {
    return std::any_of(rules.begin(), rules.end(), [&](const HidingRule& rule) {
      return screen.outletNamed(rule.outlet) == view;
    });
  };
  for (const std::string& name : screen.outletNames()) {
    const std::shared_ptr<View> outlet = screen.outletNamed(name);
    std::shared_ptr<View> covered = outlet;
    while (covered && !hasRule(covered)) {
      covered = covered->superview();
    }
    if (outlet->isOutOfSight() && !covered) {
      return fmt::format("{} of the screen \"{}\" is hidden, and it is not declared when", name,
                         screen.identifier());
    }
  }
  return "";
}

}  // namespace orlix
