// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QUrl>
#include <QWebEngineUrlRequestInterceptor>

namespace orlix::shell {

/// Allows a page and its resources to request only secure addresses and embedded data. Everything
/// else, local files above all, is refused.
class QtWebRequestGuard : public QWebEngineUrlRequestInterceptor {
 public:
  /// Encrypted (https, wss), or plain (http, ws) to the loopback interface.
  static bool isSecure(const QUrl& address) {
    const QString scheme = address.scheme();
    const QString host = address.host();
    const bool isHere = host == u"localhost" || host == u"127.0.0.1" || host == u"::1";
    return ((scheme == u"https" || scheme == u"wss") && !host.isEmpty()) ||
           ((scheme == u"http" || scheme == u"ws") && isHere);
  }
  static bool isAllowed(const QUrl& address) {
    const QString scheme = address.scheme();
    return scheme == u"data" || scheme == u"blob" || scheme == u"about" || isSecure(address);
  }
  void interceptRequest(QWebEngineUrlRequestInfo& info) override {
    info.block(!isAllowed(info.requestUrl()));
  }
};

}  // namespace orlix::shell
