// SPDX-License-Identifier: Apache-2.0

import QtQuick

// The layer of one presented screen: dims everything below it and blocks touches. The presenter
// adds the screen in front, and animates the two values while the presentation fades.
FocusScope {
    id: presentation

    property color dimming: "transparent"
    property real dimmed: 1

    LayoutMirroring.enabled: orlixLook.mirrored // qmllint disable unqualified
    LayoutMirroring.childrenInherit: true

    Rectangle {
        anchors.fill: parent
        color: presentation.dimming
        opacity: presentation.dimmed
    }

    MouseArea {
        anchors.fill: parent
        acceptedButtons: Qt.AllButtons
        hoverEnabled: true
        onWheel: wheel => wheel.accepted = true
    }
}
