// SPDX-License-Identifier: Apache-2.0

import QtQuick
import QtWebEngine

// The page of a QtWebView, `view`. It stores nothing on disk and refuses every request of a page for a
// window, file, password or permission.
WebEngineView {
  id: page
  required property QtObject view

  profile: WebEngineProfile {
    offTheRecord: true
    httpCacheType: WebEngineProfile.NoCache
    persistentCookiesPolicy: WebEngineProfile.NoPersistentCookies
  }
  settings {
    allowGeolocationOnInsecureOrigins: false
    allowRunningInsecureContent: false
    autoLoadIconsForPage: false
    dnsPrefetchEnabled: false
    errorPageEnabled: false
    fullScreenSupportEnabled: false
    hyperlinkAuditingEnabled: false
    javascriptCanAccessClipboard: false
    javascriptCanOpenWindows: false
    javascriptCanPaste: false
    localContentCanAccessFileUrls: false
    localContentCanAccessRemoteUrls: false
    navigateOnDropEnabled: false
    pdfViewerEnabled: false
    pluginsEnabled: false
    screenCaptureEnabled: false
    unknownUrlSchemePolicy: WebEngineSettings.DisallowUnknownUrlSchemes
    webRTCPublicInterfacesOnly: true
  }

  // Peer connections would bypass the request guard. Remove them from each page, and from each
  // frame when the page accesses it: injected scripts do not run in a frame that is still empty.
  Component.onCompleted: {
    const script = WebEngine.script()
    script.name = "noPeerConnections"
    script.injectionPoint = WebEngineScript.DocumentCreation
    script.worldId = WebEngineScript.MainWorld
    script.runsOnSubFrames = true
    script.sourceCode = `(function() {
      const strip = function(view) {
        try {
          delete view.RTCPeerConnection;
          delete view.webkitRTCPeerConnection;
        } catch (otherOrigin) {}
      };
      const stripFrames = function() {
        for (let i = 0; i < window.length; ++i) strip(window[i]);
      };
      const stripOnAccess = function(kind, name, viewOf) {
        const own = Object.getOwnPropertyDescriptor(kind.prototype, name);
        const get = function() {
          const found = own.get.call(this);
          if (found) strip(viewOf(found));
          return found;
        };
        Object.defineProperty(kind.prototype, name,
                              { configurable: true, enumerable: true, get: get });
      };
      strip(window);
      for (const kind of [HTMLIFrameElement, HTMLFrameElement, HTMLObjectElement]) {
        stripOnAccess(kind, "contentWindow", function(view) { return view; });
        stripOnAccess(kind, "contentDocument", function(page) { return page.defaultView; });
      }
      window.addEventListener("DOMNodeInserted", stripFrames, true);
      new MutationObserver(stripFrames).observe(document, { childList: true, subtree: true });
    })()`
    page.userScripts.insert(script)
  }

  // An isolated world: the page can neither see nor change what is evaluated.
  function evaluate(ticket, script) {
    runJavaScript(script, WebEngineScript.ApplicationWorld, function(result) { // qmllint disable unqualified
      page.view.scriptAnswered(ticket, result)
    })
  }

  onCertificateError: function(error) { view.judgeCertificate(error) }
  onLoadingChanged: function(info) { view.loadingChanged(info) }
  onNavigationRequested: function(request) { view.judgeNavigation(request) }
  onRenderProcessTerminated: function(status, code) { view.processTerminated(code) }

  // A requested window opens only when the request is accepted; it never is.
  onAuthenticationDialogRequested: function(request) {
    request.accepted = true
    request.dialogReject()
  }
  onColorDialogRequested: function(request) {
    request.accepted = true
    request.dialogReject()
  }
  onContextMenuRequested: function(request) { request.accepted = true }
  onFeaturePermissionRequested: function(origin, feature) {
    grantFeaturePermission(origin, feature, false)
  }
  onFileDialogRequested: function(request) {
    request.accepted = true
    request.dialogReject()
  }
  onFileSystemAccessRequested: function(request) { request.reject() }
  onFullScreenRequested: function(request) { request.reject() }
  // Accept the dialog by which a page asks for confirmation to leave it.
  onJavaScriptDialogRequested: function(request) {
    request.accepted = true
    if (request.type === JavaScriptDialogRequest.DialogTypeBeforeUnload) {
      request.dialogAccept()
    } else {
      request.dialogReject()
    }
  }
  // Console messages of a page may contain secrets: do not log them.
  onJavaScriptConsoleMessage: function() {}
  onQuotaRequested: function(request) { request.reject() }
  onRegisterProtocolHandlerRequested: function(request) { request.reject() }
  onSelectClientCertificate: function(selection) { selection.selectNone() }
  onTooltipRequested: function(request) { request.accepted = true }
}
