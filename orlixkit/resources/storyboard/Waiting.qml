// SPDX-License-Identifier: Apache-2.0

import QtQuick
import OrlixKit.Components

OxSheet {
    id: sheet

    title: "Please wait"

    OxPicture {
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.bottom: spinner.top
        anchors.bottomMargin: 26
        width: 134
        height: 52
        source: "image://orlix/header"
    }

    OxActivity {
        id: spinner

        readonly property var outlet: sheet.screen.activityIndicator

        objectName: outlet.name
        anchors.centerIn: parent
        visible: outlet.shown
        dotColor: outlet.color
    }
}
