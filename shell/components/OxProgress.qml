// SPDX-License-Identifier: Apache-2.0

import QtQuick

// The progress indicator, above everything else. It does not mask touches itself; ScreenPresenter
// fades it.
Item {
    id: root

    readonly property var progress: orlixProgress // qmllint disable unqualified

    anchors.fill: parent

    Accessible.role: Accessible.AlertMessage
    Accessible.name: root.progress.status
    Accessible.ignored: !root.progress.shown

    Image {
        anchors.fill: parent
        visible: root.progress.masked
        source: "image://orlix/progress_mask"
        sourceSize.width: 200
        sourceSize.height: 200
        fillMode: Image.Stretch
        smooth: true
        Accessible.ignored: true
    }

    Rectangle {
        anchors.centerIn: parent
        width: Math.max(128, words.implicitWidth + 40)
        height: 112
        radius: 14
        color: "#fb0e1016"
        border.width: 1
        border.color: "#33ffffff"

        OxActivity {
            anchors.horizontalCenter: parent.horizontalCenter
            y: 22
            width: 36
            height: 36
            Accessible.ignored: true
        }

        Text {
            id: words

            anchors.horizontalCenter: parent.horizontalCenter
            anchors.bottom: parent.bottom
            anchors.bottomMargin: 18
            text: root.progress.status
            textFormat: Text.PlainText
            color: OxTheme.text
            font.family: OxTheme.family
            font.pixelSize: 15
            font.weight: Font.Medium
            Accessible.ignored: true
        }
    }
}
