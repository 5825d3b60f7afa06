// SPDX-License-Identifier: Apache-2.0

import QtQuick

// The bar at the top of a page: the brand in its middle, the way back at its left.
Item {
    id: root

    property alias back: backButton.outlet
    property alias backAction: backButton.actionName
    readonly property Item backItem: backButton

    width: parent ? parent.width : 0
    height: 54

    OxPicture {
        objectName: "header"
        anchors.horizontalCenter: parent.horizontalCenter
        y: 4
        width: 118
        height: 46
        source: "image://orlix/header"
    }

    OxButton {
        id: backButton

        x: 10
        anchors.verticalCenter: parent.verticalCenter
        width: 72
        height: 36
        letterSize: 13
    }
}
