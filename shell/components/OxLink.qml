// SPDX-License-Identifier: Apache-2.0

import QtQuick

// A label outlet that listens to taps.
OxLabel {
    id: root

    activeFocusOnTab: true

    Accessible.role: Accessible.Link
    Accessible.focusable: true
    Accessible.onPressAction: root.outlet.tap()

    Keys.onReturnPressed: root.outlet.tap()
    Keys.onEnterPressed: root.outlet.tap()
    Keys.onSpacePressed: root.outlet.tap()

    MouseArea {
        anchors.fill: parent
        enabled: root.outlet.tappable && root.outlet.reachable
        cursorShape: Qt.PointingHandCursor
        onClicked: root.outlet.tap()
    }

    OxFocusRing {
        on: root.activeFocus
    }
}
