// SPDX-License-Identifier: Apache-2.0

import QtQuick
import QtQuick.Layouts
import OrlixKit.Components

OxSheet {
    id: sheet

    title: heading.text
    ribbon: true
    primary: main
    cancel: out
    bodyHeight: sheet.enough

    head: Item {
        width: sheet.width
        height: heading.y + heading.height + (sheet.compact ? 8 : 14)

        OxTitle {
            id: heading

            anchors.left: parent.left
            anchors.leftMargin: sheet.margin
            y: sheet.compact ? 10 : 18
            width: parent.width - 2 * sheet.margin
            text: "Your cards"
        }
    }

    OxTable {
        outlet: sheet.screen.tableView
        anchors.fill: parent
        anchors.leftMargin: sheet.margin
        anchors.rightMargin: sheet.margin - barSpace
        anchors.bottomMargin: 10
        spokenName: sheet.title
        spokenButton: "Delete"
    }

    foot: OxFoot {
        OxButton {
            id: out

            outlet: sheet.screen.cancelButton
            actionName: "cancelAction"
            Layout.preferredWidth: OxTheme.points(92)
            Layout.fillWidth: sheet.narrow
            compact: sheet.compact
        }

        OxButton {
            id: main

            outlet: sheet.screen.addCardButton
            actionName: "addCardAction"
            Layout.fillWidth: true
            primary: true
            compact: sheet.compact
        }
    }
}
