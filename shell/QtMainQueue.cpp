// SPDX-License-Identifier: Apache-2.0

#include "shell/QtMainQueue.h"

#include <QCoreApplication>
#include <QEvent>
#include <QEventLoop>
#include <QThread>
#include <exception>
#include <utility>

#include "orlixkit/host/RunningTasks.h"

namespace orlix::shell {

namespace {

const QEvent::Type kRunNext = static_cast<QEvent::Type>(QEvent::registerEventType());

}  // namespace

class QtMainQueue::Receiver : public QObject {
 public:
  /// Main thread: later events are ignored.
  void detach() { queue_ = nullptr; }
  void attach(QtMainQueue* queue) { queue_ = queue; }
  bool event(QEvent* event) override {
    if (event->type() != kRunNext) {
      return QObject::event(event);
    }
    if (queue_ != nullptr) {
      queue_->runNext();
    }
    return true;
  }

 private:
  QtMainQueue* queue_ = nullptr;
};

struct QtMainQueue::Run {
  const std::function<bool()>& done;
  QEventLoop loop{};
  bool over = false;
  std::exception_ptr error{};  ///< exception of `done`; must not propagate through Qt
};

QtMainQueue::QtMainQueue(std::shared_ptr<SystemLog> log)
    : log_(std::move(log)), receiver_(std::make_unique<Receiver>().release(), [](Receiver* made) {
        made->thread() == QThread::currentThread() ? delete made : made->deleteLater();
      }) {
  receiver_->attach(this);
}

QtMainQueue::~QtMainQueue() { receiver_->detach(); }

void QtMainQueue::async(Task task) {
  // Before the task is queued, so that a lack of memory leaves the queue unchanged.
  auto event = std::make_unique<QEvent>(kRunNext);
  {
    const std::lock_guard lock(lock_);
    if (closed_) {
      return;
    }
    pending_.push_back(std::move(task));
  }
  wakeWhenPending(std::move(event));
}

bool QtMainQueue::isCurrent() const { return QThread::currentThread() == receiver_->thread(); }

void QtMainQueue::wakeWhenPending() { wakeWhenPending(std::make_unique<QEvent>(kRunNext)); }

void QtMainQueue::wakeWhenPending(std::unique_ptr<QEvent> event) {
  {
    const std::lock_guard lock(lock_);
    if (awake_ || (pending_.empty() && !closed_)) {
      return;
    }
    awake_ = true;
  }
  QCoreApplication::postEvent(receiver_.get(), event.release());
}

void QtMainQueue::runNext() {
  Task task;
  bool closed = false;
  {
    const std::lock_guard lock(lock_);
    awake_ = false;
    closed = closed_;
    const bool held = innermost_ != nullptr && innermost_->over;
    if (!closed && !held && !pending_.empty()) {
      task = std::move(pending_.front());
      pending_.pop_front();
    }
  }
  if (task) {
    runLogged(task, *log_);
    task = {};
  }
  askWhetherDone();
  if (!closed && (innermost_ == nullptr || !innermost_->over)) {
    wakeWhenPending();
  }
}

void QtMainQueue::askWhetherDone() {
  if (innermost_ == nullptr || innermost_->over) {
    return;
  }
  {
    const std::lock_guard lock(lock_);
    innermost_->over = closed_;
  }
  if (!innermost_->over) {
    try {
      innermost_->over = innermost_->done();
    } catch (...) {
      innermost_->error = std::current_exception();
      innermost_->over = true;
    }
  }
  if (innermost_->over) {
    innermost_->loop.quit();
  }
}

void QtMainQueue::runUntil(const std::function<bool()>& done) {
  {
    const std::lock_guard lock(lock_);
    if (closed_) {
      return;
    }
  }
  if (done()) {
    return;
  }
  Run run{done};
  Run* const outer = std::exchange(innermost_, &run);
  wakeWhenPending();
  run.loop.exec();
  innermost_ = outer;
  askWhetherDone();  // tasks run in here may satisfy the outer run's condition
  wakeWhenPending();
  if (run.error) {
    std::rethrow_exception(run.error);
  }
}

void QtMainQueue::close() {
  std::deque<Task> dropped;  // released unlocked: captures' destructors may call back
  {
    const std::lock_guard lock(lock_);
    closed_ = true;
    dropped.swap(pending_);
  }
  wakeWhenPending();
}

}  // namespace orlix::shell
