// SPDX-License-Identifier: Apache-2.0

pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts

// The shop: what it sells, the ways into the wallet, and how the last visit there ended.
Rectangle {
    id: root

    required property var shop
    readonly property bool wide: root.width > 560

    color: "#f3f6f4"

    Rectangle {
        id: bar

        width: root.width
        height: root.height < 400 ? 52 : 64
        color: "#15694c"

        Text {
            x: 18
            anchors.verticalCenter: parent.verticalCenter
            text: "Corner Shop"
            color: "white"
            font.family: "Inter"
            font.pixelSize: 21
            font.weight: Font.Bold
            Accessible.role: Accessible.Heading
            Accessible.name: text
        }

        SystemSwitch {
            objectName: "systemSwitch"
            anchors.right: parent.right
            anchors.rightMargin: 16
            anchors.verticalCenter: parent.verticalCenter
            enabled: !root.shop.busy
            checked: root.shop.live
            onToggled: {
                root.shop.live = checked;
                checked = Qt.binding(() => root.shop.live);
            }
        }
    }

    Flickable {
        id: shelf

        anchors.top: bar.bottom
        anchors.bottom: messages.top
        width: root.width
        contentHeight: articles.implicitHeight + 28
        boundsBehavior: Flickable.StopAtBounds
        clip: true

        GridLayout {
            id: articles

            x: 16
            y: 14
            width: shelf.width - 32
            columns: root.wide ? 2 : 1
            rowSpacing: 10
            columnSpacing: 10

            Repeater {
                model: root.shop.articles

                Article {
                    required property int index
                    required property var modelData

                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    Layout.preferredWidth: 1
                    article: modelData
                    number: index
                    buyable: !root.shop.busy
                    onBought: root.shop.pay(index)
                }
            }
        }
    }

    // Text messages that the sandbox has sent, so that it can be tried without a phone.
    Rectangle {
        id: messages

        anchors.bottom: foot.top
        width: root.width
        height: root.shop.messages.length > 0 ? newest.implicitHeight + 20 : 0
        visible: height > 0
        color: "#fff6dd"

        Text {
            id: newest

            x: 16
            width: parent.width - 32
            anchors.verticalCenter: parent.verticalCenter
            text: root.shop.messages.length > 0 ? root.shop.messages[0] : ""
            textFormat: Text.PlainText
            color: "#5c4300"
            font.family: "Inter"
            font.pixelSize: 14
            wrapMode: Text.Wrap
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
    }

    Rectangle {
        id: foot

        anchors.bottom: parent.bottom
        width: root.width
        height: root.height < 400 ? 56 : 72
        color: "white"

        Rectangle {
            width: parent.width
            height: 1
            color: "#e2e7e4"
        }

        RowLayout {
            anchors.fill: parent
            anchors.leftMargin: 16
            anchors.rightMargin: 16
            spacing: 10

            ShopButton {
                objectName: "register"
                Layout.fillWidth: true
                Layout.preferredWidth: 1
                implicitHeight: root.height < 400 ? 40 : 46
                filled: false
                text: "Register"
                enabled: !root.shop.busy
                onClicked: root.shop.registerUser()
            }

            ShopButton {
                objectName: "wallet"
                Layout.fillWidth: true
                Layout.preferredWidth: 1
                implicitHeight: root.height < 400 ? 40 : 46
                filled: false
                text: "Wallet"
                enabled: !root.shop.busy
                onClicked: root.shop.openWallet()
            }
        }
    }

    OutcomePanel {
        anchors.fill: parent
        outcome: root.shop.outcome
        onClosed: root.shop.clearOutcome()
    }
}
