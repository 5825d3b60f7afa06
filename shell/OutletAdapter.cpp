// SPDX-License-Identifier: Apache-2.0

#include "shell/OutletAdapter.h"

#include <utility>

#include "orlixkit/host/Host.h"
#include "orlixkit/host/RunningTasks.h"
#include "orlixkit/ui/Touch.h"

namespace orlix::shell {

QColor toQColor(const Color& color) {
  return QColor::fromRgbF(static_cast<float>(color.red), static_cast<float>(color.green),
                          static_cast<float>(color.blue), static_cast<float>(color.alpha));
}

QUrl imageAddress(const std::string& imageName) {
  return imageName.empty() ? QUrl() : QUrl("image://orlix/" + QString::fromStdString(imageName));
}

OutletAdapter::OutletAdapter(std::string name, std::shared_ptr<View> view,
                             std::weak_ptr<ViewController> screen)
    : name_(std::move(name)), view_(std::move(view)), screen_(std::move(screen)) {
  view_->onChange = [this] { viewChanged(); };
  shown_ = !view_->isOutOfSight();
}

OutletAdapter::~OutletAdapter() { view_->onChange = {}; }

void OutletAdapter::detach() {
  view_->onChange = {};
  view_ = emptyView();
  screen_.reset();
}

void OutletAdapter::refreshShown() {
  const bool now = !view_->isOutOfSight();
  if (std::exchange(shown_, now) != now) {
    Q_EMIT shownChanged();
  }
}

double OutletAdapter::alpha() const { return view_->alpha(); }
QColor OutletAdapter::backgroundColor() const { return toQColor(view_->backgroundColor()); }
QColor OutletAdapter::tintColor() const { return toQColor(view_->tintColor()); }
double OutletAdapter::cornerRadius() const { return view_->cornerRadius(); }
double OutletAdapter::borderWidth() const { return view_->borderWidth(); }
QColor OutletAdapter::borderColor() const { return toQColor(view_->borderColor()); }
bool OutletAdapter::tappable() const { return view_->onTap != nullptr; }

bool OutletAdapter::reachable() const {
  const auto there = screen();
  return there && !touchIsMasked(Host::current().application(), *there, name_);
}

void OutletAdapter::touch(const Task& doing) {
  // Held meanwhile: the doing may take the screen away.
  const auto there = screen();
  if (there && touchRefusal(Host::current().application(), *there, name_) == TouchRefusal::none) {
    runLogged(doing);
  }
}

void OutletAdapter::tap() {
  const auto there = screen();
  if (const Task tapped = there ? touchTask(there, name_) : Task()) {
    touch(tapped);
  }
}

}  // namespace orlix::shell
