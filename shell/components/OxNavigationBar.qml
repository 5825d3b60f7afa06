// SPDX-License-Identifier: Apache-2.0

import QtQuick

// The bar at the top of a page: the brand in its middle, the way back at its left.
Item {
    id: root

    property alias back: backButton.outlet
    property alias backAction: backButton.actionName
    readonly property Item backItem: backButton
    readonly property bool narrow: OxTheme.isNarrow(root.width)

    width: parent ? parent.width : 0
    height: Math.max(54, backButton.height + 12)

    OxPicture {
        objectName: "header"
        // A large button needs the middle.
        anchors.horizontalCenter: root.narrow ? undefined : parent.horizontalCenter
        anchors.right: root.narrow ? parent.right : undefined
        anchors.rightMargin: 10
        anchors.verticalCenter: parent.verticalCenter
        width: Math.min(118, root.width - 30 - (root.narrow ? backButton.width : 0))
        height: 46
        source: "image://orlix/header"
    }

    OxButton {
        id: backButton

        anchors.left: parent.left
        anchors.leftMargin: 10
        anchors.verticalCenter: parent.verticalCenter
        implicitWidth: OxTheme.points(72)
        implicitHeight: OxTheme.points(36)
        letterSize: OxTheme.points(13)
    }
}
