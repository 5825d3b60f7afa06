// SPDX-License-Identifier: Apache-2.0

import QtQuick
import QtQuick.Templates as T

// A view outlet that listens to taps, such as the card that pays.
T.Button {
    id: root

    required property var outlet
    property real roundness: 8

    objectName: root.outlet.name
    visible: root.outlet.shown
    enabled: root.outlet.reachable
    opacity: root.outlet.alpha * (root.enabled ? 1 : OxTheme.disabled)

    Accessible.role: Accessible.Button
    Accessible.name: root.text
    Accessible.description: OxTheme.described("", root.enabled)
    Accessible.onPressAction: root.clicked()

    Keys.onReturnPressed: root.clicked()
    Keys.onEnterPressed: root.clicked()

    onClicked: root.outlet.tap()

    background: Rectangle {
        radius: root.roundness
        color: root.outlet.backgroundColor

        Rectangle {
            anchors.fill: parent
            radius: root.roundness
            color: "black"
            opacity: root.down ? 0.2 : 0
        }

        OxFocusRing {
            radius: root.roundness + 3
            on: root.visualFocus
        }
    }
}
