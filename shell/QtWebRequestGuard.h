#pragma once

#include <QWebEngineUrlRequestInterceptor>

#include "orlixkit/platform/PageAddress.h"

namespace orlix::shell {

/// Lets a page and what is on it ask only for addresses that are allowed, and for what needs no
/// asking: texts that it carries itself.
class QtWebRequestGuard : public QWebEngineUrlRequestInterceptor {
 public:
  static bool isAllowed(const QUrl& address) {
    const QString scheme = address.scheme();
    return scheme == u"data" || scheme == u"blob" || scheme == u"about" ||
           isPageAddressAllowed(address.toEncoded().toStdString());
  }
  void interceptRequest(QWebEngineUrlRequestInfo& info) override {
    info.block(!isAllowed(info.requestUrl()));
  }
};

}  // namespace orlix::shell
