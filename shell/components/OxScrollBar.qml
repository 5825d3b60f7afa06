// SPDX-License-Identifier: Apache-2.0

import QtQuick
import QtQuick.Templates as T

// A scroll bar.
T.ScrollBar {
    id: root

    property color barColor: OxTheme.line

    implicitWidth: 5
    visible: size < 1
    contentItem: Rectangle {
        implicitWidth: 4
        radius: 2
        color: root.barColor
    }
}
