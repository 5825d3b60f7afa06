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
    readonly property color toneColor: root.tone === "good" ? ShopTheme.good
                                       : root.tone === "bad" ? ShopTheme.bad : ShopTheme.neutral

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
        height: Math.min(content.implicitHeight + 40, root.height - 24)
        radius: 18
        color: ShopTheme.plate

        MouseArea {
            anchors.fill: parent
        }

        // Large texts in a low window are scrolled.
        Flickable {
            id: scroll

            anchors.fill: parent
            anchors.margins: 20
            contentHeight: content.implicitHeight
            boundsBehavior: Flickable.StopAtBounds
            interactive: scroll.contentHeight > scroll.height
            clip: scroll.interactive

            ColumnLayout {
                id: content

                width: scroll.width
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
                        color: ShopTheme.plate
                        font.family: "Inter"
                        font.pixelSize: ShopTheme.points(24)
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
                    font.pixelSize: ShopTheme.points(20)
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
                    color: ShopTheme.ink
                    font.family: "Inter"
                    font.pixelSize: ShopTheme.points(15)
                    wrapMode: Text.Wrap
                    horizontalAlignment: Text.AlignHCenter
                    Accessible.role: Accessible.StaticText
                    Accessible.name: text
                }

                ShopButton {
                    objectName: "outcomeOk"
                    Layout.fillWidth: true
                    Layout.topMargin: 8
                    implicitHeight: ShopTheme.points(46)
                    focus: true
                    text: "Ok"
                    onClicked: root.closed()
                }
            }
        }
    }
}
