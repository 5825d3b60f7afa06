// SPDX-License-Identifier: Apache-2.0

import QtQuick
import QtQuick.Layouts

// The page of the card's issuer, over the whole sheet, with the way out above it.
OxSheet {
    id: sheet

    property alias heading: title.text

    title: title.text
    ribbon: true
    cancel: out
    bodyHeight: sheet.enough

    head: Item {
        width: sheet.width
        height: Math.max(sheet.compact ? 44 : 54, bar.implicitHeight + 8)

        GridLayout {
            id: bar

            anchors.verticalCenter: parent.verticalCenter
            anchors.left: parent.left
            anchors.leftMargin: sheet.margin
            anchors.right: parent.right
            anchors.rightMargin: 10
            columns: sheet.narrow ? 1 : 2
            columnSpacing: 8
            rowSpacing: 4

            OxTitle {
                id: title

                Layout.fillWidth: true
                size: 15
            }

            OxButton {
                id: out

                Layout.preferredWidth: OxTheme.points(88)
                Layout.alignment: Qt.AlignRight
                implicitHeight: OxTheme.points(36)
                outlet: sheet.screen.cancelButton
                actionName: "cancelButton"
            }
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
