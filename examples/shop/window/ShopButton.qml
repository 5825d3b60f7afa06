// SPDX-License-Identifier: Apache-2.0

import QtQuick
import QtQuick.Templates as T

// A button of the shop: filled, or with a line around it.
T.Button {
    id: root

    property bool filled: true

    implicitWidth: implicitContentWidth + 32
    implicitHeight: ShopTheme.points(40)
    opacity: root.enabled ? 1 : 0.45

    Accessible.role: Accessible.Button
    Accessible.name: root.text
    Accessible.onPressAction: root.clicked()

    Keys.onReturnPressed: root.clicked()
    Keys.onEnterPressed: root.clicked()

    background: Rectangle {
        radius: 10
        color: root.filled ? (root.down ? ShopTheme.buttonPressed : ShopTheme.button)
                           : root.down ? ShopTheme.platePressed : ShopTheme.plate
        border.width: root.filled ? 0 : 1
        border.color: ShopTheme.buttonLine

        Rectangle {
            anchors.fill: parent
            anchors.margins: -3
            radius: 13
            color: "transparent"
            border.width: 2
            border.color: ShopTheme.ring
            visible: root.visualFocus
        }
    }

    contentItem: Text {
        text: root.text
        color: root.filled ? "white" : ShopTheme.ink
        font.family: "Inter"
        font.pixelSize: ShopTheme.points(15)
        font.weight: Font.DemiBold
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
        textFormat: Text.PlainText
    }
}
