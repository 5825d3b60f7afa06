// SPDX-License-Identifier: Apache-2.0

import QtQuick
import QtQuick.Templates as T

// A button's face and its keys. `primary` lays a plate of the accent colour under it.
T.Button {
    id: root

    property bool primary: false
    property bool compact: false
    property color fill: "transparent"
    property color letters: OxTheme.text
    property color line: OxTheme.text
    property real lineWidth: 1
    property real cornerRadius: 5
    property int letterWeight: root.primary ? Font.Bold : Font.Medium
    property int letterSize: OxTheme.points(15)

    implicitWidth: Math.max(OxTheme.points(72), implicitContentWidth + 24)
    implicitHeight: Math.max(root.compact ? OxTheme.compactButtonHeight : OxTheme.buttonHeight,
                             implicitContentHeight + 8)
    opacity: root.enabled ? 1 : OxTheme.disabled

    Accessible.role: Accessible.Button
    Accessible.name: root.text
    Accessible.description: OxTheme.described("", root.enabled)
    Accessible.onPressAction: root.clicked()

    Keys.onReturnPressed: root.clicked()
    Keys.onEnterPressed: root.clicked()

    background: Rectangle {
        radius: root.cornerRadius
        color: !root.primary ? "transparent" : root.down ? OxTheme.accentPlatePressed
                                                         : OxTheme.accentPlate

        Rectangle {
            anchors.fill: parent
            radius: root.cornerRadius
            color: root.down && !root.primary ? Qt.rgba(1, 1, 1, 0.16) : root.fill
            border.width: root.lineWidth
            border.color: root.line
        }

        OxFocusRing {
            on: root.visualFocus
        }
    }

    contentItem: Text {
        text: root.text
        color: root.letters
        font.family: OxTheme.family
        font.pixelSize: root.letterSize
        font.weight: root.letterWeight
        font.letterSpacing: 0.4
        wrapMode: Text.Wrap
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
        textFormat: Text.PlainText
        leftPadding: 6
        rightPadding: 6
    }
}
