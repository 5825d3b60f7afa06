// SPDX-License-Identifier: Apache-2.0

import QtQuick

// Shows where the keyboard's focus is.
Rectangle {
    id: ring

    property bool on: false

    anchors.fill: parent
    anchors.margins: -3
    color: "transparent"
    radius: 8
    border.width: 2
    border.color: OxTheme.accent
    visible: ring.on
}
