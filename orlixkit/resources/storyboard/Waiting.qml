// SPDX-License-Identifier: Apache-2.0

import QtQuick
import OrlixKit.Components

OxSheet {
    id: sheet

    // How long the user waits, in milliseconds, before the screen says that it goes on trying.
    property int patience: 10000

    title: words.text

    Timer {
        id: patienceLost

        property bool late: false

        interval: sheet.patience
        running: true
        onTriggered: patienceLost.late = true
    }

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
        anchors.horizontalCenter: parent.horizontalCenter
        // With the picture above it and the words below it in the middle.
        y: (parent.height - height - words.height + 58) / 2
        visible: outlet.shown
        dotColor: outlet.color
    }

    Text {
        id: words

        objectName: "waitingFor"
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.top: spinner.bottom
        anchors.topMargin: 20
        width: parent.width - 2 * sheet.margin
        text: patienceLost.late
              ? "Still trying to reach your wallet. On a slow network this takes a moment longer."
              : "Connecting to your wallet"
        textFormat: Text.PlainText
        color: OxTheme.mutedText
        font.family: OxTheme.family
        font.pixelSize: OxTheme.points(15)
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.Wrap
        Accessible.role: Accessible.AlertMessage
        Accessible.name: words.text
    }
}
