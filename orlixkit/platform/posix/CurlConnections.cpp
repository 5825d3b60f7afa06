#include "orlixkit/platform/posix/CurlConnections.h"

#include "orlixkit/platform/posix/CurlExchange.h"
#include "orlixkit/platform/posix/CurlLoop.h"

namespace orlix {

CurlConnections::CurlConnections() : loop_(std::make_shared<CurlLoop>()) {}

CurlConnections::~CurlConnections() { loop_->close(); }

std::shared_ptr<UrlConnection> CurlConnections::newConnection(
    UrlRequest request, std::shared_ptr<UrlConnectionDelegate> delegate) {
  return std::make_shared<CurlExchange>(std::move(request), std::move(delegate), loop_);
}

void CurlConnections::close() { loop_->close(); }

std::shared_ptr<WaitingWork> CurlConnections::waitingWork() const { return loop_; }

}  // namespace orlix
