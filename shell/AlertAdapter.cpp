// SPDX-License-Identifier: Apache-2.0

#include "shell/AlertAdapter.h"

#include "orlixkit/host/Host.h"
#include "orlixkit/host/RunningTasks.h"

namespace orlix::shell {

namespace {

QString word(AlertActionStyle style) {
  switch (style) {
    case AlertActionStyle::cancel:
      return QStringLiteral("cancel");
    case AlertActionStyle::destructive:
      return QStringLiteral("destructive");
    case AlertActionStyle::standard:
      break;
  }
  return QStringLiteral("standard");
}

}  // namespace

AlertAdapter::AlertAdapter(const std::shared_ptr<AlertController>& alert)
    : alert_(alert),
      title_(QString::fromStdString(alert->title())),
      message_(QString::fromStdString(alert->message())),
      titleFont_(alert->titleFont),
      messageFont_(alert->messageFont),
      textColor_(toQColor(alert->textColor)),
      view_(
          std::make_unique<OutletAdapter>("view", alert->view(), std::weak_ptr<ViewController>())) {
  for (const AlertAction& action : alert->actions()) {
    buttons_.append(QString::fromStdString(action.title));
    styles_.append(word(action.style));
  }
}

void AlertAdapter::detach() {
  alert_.reset();
  view_->detach();
}

int AlertAdapter::cancelIndex() const {
  return buttons_.size() == 1 ? 0 : static_cast<int>(styles_.indexOf(QStringLiteral("cancel")));
}

void AlertAdapter::press(int index) {
  const auto alert = alert_.lock();
  if (alert && alert->hasAppeared() && index >= 0) {
    runLogged([&] { alert->press(static_cast<std::size_t>(index)); });
  }
}

}  // namespace orlix::shell
