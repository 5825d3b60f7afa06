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

    head: Item {
        width: sheet.width
        height: heading.y + heading.height + (sheet.compact ? 8 : 14)

        OxTitle {
            id: heading

            x: sheet.margin
            y: sheet.compact ? 10 : 18
            width: parent.width - 2 * x
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
            Layout.preferredWidth: 92
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
