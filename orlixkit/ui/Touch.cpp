// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/ui/Touch.h"

#include "orlixkit/ui/Application.h"
#include "orlixkit/ui/TextField.h"

namespace orlix {

const char* touchRefusalText(TouchRefusal refusal) {
  switch (refusal) {
    case TouchRefusal::covered:
      return "the screen is covered, or on its way in or out";
    case TouchRefusal::masked:
      return "the progress indicator holds touches back";
    case TouchRefusal::hidden:
      return "it is hidden";
    case TouchRefusal::disabled:
      return "it is disabled";
    case TouchRefusal::none:
      break;
  }
  return "";
}

TouchRefusal touchRefusal(const Application& application, const ViewController& screen,
                          const std::string& name) {
  if (!screen.hasAppeared() || screen.isBeingDismissed() || screen.presentedViewController()) {
    return TouchRefusal::covered;
  }
  if (touchIsMasked(application, screen, name)) {
    return TouchRefusal::masked;
  }
  const std::shared_ptr<View> view = screen.outletNamed(name);
  if (view && view->isOutOfSight()) {
    return TouchRefusal::hidden;
  }
  const auto button = std::dynamic_pointer_cast<Button>(view);
  const auto field = std::dynamic_pointer_cast<TextField>(view);
  const bool disabled = (button && !button->enabled()) || (field && !field->enabled());
  return disabled ? TouchRefusal::disabled : TouchRefusal::none;
}

bool touchIsMasked(const Application& application, const ViewController& screen,
                   const std::string& name) {
  return application.progressIndicator().blocksInput() && !screen.isReachableUnderMask(name);
}

Task touchTask(const std::shared_ptr<ViewController>& screen, const std::string& name) {
  const std::shared_ptr<View> view = screen->outletNamed(name);
  if (const auto button = std::dynamic_pointer_cast<Button>(view);
      button && button->onTouchUpInside) {
    return button->onTouchUpInside;
  }
  if (const auto field = std::dynamic_pointer_cast<TextField>(view)) {
    return [screen, field] { touchField(*screen, *field); };
  }
  if (view && view->onTap) {
    return view->onTap;
  }
  if (screen->hasAction(name)) {
    return [screen, name] { screen->performAction(name); };
  }
  return {};
}

bool touchField(const ViewController& screen, TextField& field) {
  for (const std::string& name : screen.outletNames()) {
    const auto other = std::dynamic_pointer_cast<TextField>(screen.outletNamed(name));
    if (other && other.get() != &field && other->editing()) {
      other->endEditing();
    }
  }
  if (field.editing()) {
    return true;
  }
  if (!field.beginEditing()) {
    return false;
  }
  field.setCaret(field.textLength());
  return true;
}

}  // namespace orlix
