// SPDX-License-Identifier: Apache-2.0

pragma ComponentBehavior: Bound

import QtQuick

// An activity indicator.
Item {
    id: root

    property color dotColor: OxTheme.text
    property int step: 0
    readonly property bool turning: root.visible && !OxTheme.reducedMotion

    implicitWidth: 40
    implicitHeight: 40

    Accessible.role: Accessible.Animation
    Accessible.name: qsTr("Please wait")

    Timer {
        interval: 90
        repeat: true
        running: root.turning
        onTriggered: root.step = (root.step + 1) % 8
    }

    Repeater {
        model: 8

        Rectangle {
            required property int index
            readonly property real angle: index * Math.PI / 4

            width: root.width / 5.5
            height: width
            radius: width / 2
            x: (root.width - width) / 2 + (root.width - width) / 2 * Math.sin(angle)
            y: (root.height - height) / 2 - (root.height - height) / 2 * Math.cos(angle)
            color: root.dotColor
            opacity: OxTheme.reducedMotion ? 1 : 0.15 + 0.85 * ((index - root.step + 7) % 8) / 7
        }
    }
}
