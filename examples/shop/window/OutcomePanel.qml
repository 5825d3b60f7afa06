// SPDX-License-Identifier: Apache-2.0

import QtQuick
import QtQuick.Layouts

// How the last visit to the wallet ended, as its user would want to read it.
FocusScope {
    id: root

    // {title, detail, tone}; null while there is none to tell
    required property var outcome

    signal closed

    readonly property string title: root.outcome !== null ? root.outcome.title : ""
    readonly property string detail: root.outcome !== null ? root.outcome.detail : ""
    readonly property string tone: root.outcome !== null ? root.outcome.tone : ""
    readonly property color toneColor: root.tone === "good" ? "#15803d"
                                       : root.tone === "bad" ? "#b42318" : "#475467"

    visible: root.outcome !== null

    Accessible.role: Accessible.AlertMessage
    Accessible.name: root.title
    Accessible.description: root.detail

    onVisibleChanged: {
        if (root.visible) {
            root.forceActiveFocus();
        }
    }

    Keys.onEscapePressed: root.closed()

    Rectangle {
        anchors.fill: parent
        color: "black"
        opacity: 0.35

        MouseArea {
            anchors.fill: parent
            hoverEnabled: true
            onClicked: root.closed()
        }
    }

    Rectangle {
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 12
        width: Math.min(420, root.width - 32)
        height: content.implicitHeight + 40
        radius: 18
        color: "white"

        MouseArea {
            anchors.fill: parent
        }

        ColumnLayout {
            id: content

            anchors.left: parent.left
            anchors.right: parent.right
            anchors.top: parent.top
            anchors.margins: 20
            spacing: 8

            Rectangle {
                Layout.alignment: Qt.AlignHCenter
                implicitWidth: 48
                implicitHeight: 48
                radius: 24
                color: root.toneColor

                Text {
                    anchors.centerIn: parent
                    text: root.tone === "good" ? "\u2713" : root.tone === "bad" ? "!" : "i"
                    color: "white"
                    font.family: "Inter"
                    font.pixelSize: 24
                    font.weight: Font.Bold
                    Accessible.ignored: true
                }
            }

            Text {
                objectName: "outcomeTitle"
                Layout.fillWidth: true
                text: root.title
                textFormat: Text.PlainText
                color: root.toneColor
                font.family: "Inter"
                font.pixelSize: 20
                font.weight: Font.Bold
                wrapMode: Text.Wrap
                horizontalAlignment: Text.AlignHCenter
                Accessible.role: Accessible.Heading
                Accessible.name: text
            }

            Text {
                objectName: "outcomeDetail"
                Layout.fillWidth: true
                visible: text !== ""
                text: root.detail
                textFormat: Text.PlainText
                color: "#344054"
                font.family: "Inter"
                font.pixelSize: 15
                wrapMode: Text.Wrap
                horizontalAlignment: Text.AlignHCenter
                Accessible.role: Accessible.StaticText
                Accessible.name: text
            }

            ShopButton {
                objectName: "outcomeOk"
                Layout.fillWidth: true
                Layout.topMargin: 8
                implicitHeight: 46
                focus: true
                text: "Ok"
                onClicked: root.closed()
            }
        }
    }
}
