// SPDX-License-Identifier: Apache-2.0

import QtQuick

// A button outlet.
OxPlate {
    id: root

    required property var outlet
    // The action that a touch performs, so that scripts can find the button by it.
    property string actionName: ""

    objectName: root.outlet.name
    visible: root.outlet.shown
    enabled: root.outlet.enabled && root.outlet.reachable
    opacity: root.outlet.alpha * (root.enabled ? 1 : OxTheme.disabled)
    text: root.outlet.text
    fill: root.outlet.backgroundColor
    letters: root.outlet.textColor
    line: root.outlet.borderColor
    lineWidth: root.outlet.borderWidth
    cornerRadius: root.outlet.cornerRadius

    onClicked: root.outlet.tap()
}
