// SPDX-License-Identifier: Apache-2.0

import QtQuick
import OrlixKit.Components

OxSheet {
    id: sheet

    title: "Terms and conditions"
    ribbon: true
    cancel: bar.backItem
    bodyHeight: sheet.enough

    head: OxNavigationBar {
        id: bar

        back: sheet.screen.backButton
        backAction: "backAction"
    }

    OxWebPage {
        outlet: sheet.screen.webView
        anchors.fill: parent
        anchors.bottomMargin: sheet.roundness
    }
}
