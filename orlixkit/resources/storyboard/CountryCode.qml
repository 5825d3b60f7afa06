// SPDX-License-Identifier: Apache-2.0

import QtQuick
import OrlixKit.Components

OxSheet {
    id: sheet

    title: "Country codes"
    ribbon: true
    cancel: bar.backItem
    bodyHeight: sheet.enough

    head: OxNavigationBar {
        id: bar

        back: sheet.screen.cancelButton
        backAction: "cancelAction"
    }

    OxTable {
        outlet: sheet.screen.tableView
        anchors.fill: parent
        anchors.bottomMargin: sheet.roundness
        light: true
        spokenName: sheet.title
    }
}
