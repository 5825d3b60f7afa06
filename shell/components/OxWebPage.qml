// SPDX-License-Identifier: Apache-2.0

import QtQuick

// A web outlet: the page fills it once there is one.
Rectangle {
    id: root

    required property var outlet
    readonly property var page: root.outlet.page

    objectName: root.outlet.name
    visible: root.outlet.shown
    opacity: root.outlet.alpha
    color: root.outlet.backgroundColor
    clip: true

    Accessible.role: Accessible.WebDocument
    Accessible.name: qsTr("Web page")

    function adopt(): void {
        if (root.page) {
            root.page.parent = root;
            root.page.anchors.fill = root;
        }
    }

    onPageChanged: root.adopt()
    Component.onCompleted: root.adopt()
}
