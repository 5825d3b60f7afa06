// SPDX-License-Identifier: Apache-2.0

import QtQuick

// A label outlet that listens to taps.
OxLabel {
    id: root

    activeFocusOnTab: true
    opacity: root.outlet.alpha * (root.outlet.reachable ? 1 : OxTheme.disabled)

    Accessible.role: Accessible.Link
    Accessible.focusable: true
    Accessible.description: OxTheme.described("", root.outlet.reachable)
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
