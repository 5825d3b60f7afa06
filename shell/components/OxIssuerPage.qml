// SPDX-License-Identifier: Apache-2.0

import QtQuick

// The page of the card's issuer, over the whole sheet, with the way out above it.
OxSheet {
    id: sheet

    property alias heading: title.text

    title: title.text
    ribbon: true
    cancel: out

    head: Item {
        width: sheet.width
        height: sheet.compact ? 44 : 54

        OxTitle {
            id: title

            x: sheet.margin
            width: out.x - x - 8
            anchors.verticalCenter: parent.verticalCenter
            font.pixelSize: 15
            wrapMode: Text.NoWrap
            elide: Text.ElideRight
        }

        OxButton {
            id: out

            anchors.right: parent.right
            anchors.rightMargin: 10
            anchors.verticalCenter: parent.verticalCenter
            width: 88
            height: 36
            outlet: sheet.screen.cancelButton
            actionName: "cancelButton"
        }
    }

    OxWebPage {
        anchors.fill: parent
        anchors.leftMargin: 1
        anchors.rightMargin: 1
        anchors.bottomMargin: sheet.roundness
        outlet: sheet.screen.secureCodewebView
        color: "white"
    }
}
