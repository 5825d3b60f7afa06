// SPDX-License-Identifier: Apache-2.0

pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts

// The shop: what it sells, the ways into the wallet, and how the last visit there ended.
Rectangle {
    id: root

    required property var shop

    LayoutMirroring.enabled: orlixLook.mirrored // qmllint disable unqualified
    LayoutMirroring.childrenInherit: true
    readonly property bool wide: root.width > 560

    color: ShopTheme.page

    Rectangle {
        id: bar

        // Name and switch, one below the other where they are too wide.
        readonly property bool stacked: root.width < ShopTheme.points(280)

        enabled: !panel.visible
        width: root.width
        height: bar.stacked ? heading.height + liveSwitch.height + 18
                            : Math.max(root.height < 400 ? 52 : 64, liveSwitch.height + 12)
        color: ShopTheme.bar

        Text {
            id: heading

            anchors.left: parent.left
            anchors.leftMargin: 18
            y: bar.stacked ? 6 : (bar.height - height) / 2
            text: "Corner Shop"
            color: "white"
            font.family: "Inter"
            font.pixelSize: ShopTheme.points(21)
            font.weight: Font.Bold
            Accessible.role: Accessible.Heading
            Accessible.name: text
        }

        SystemSwitch {
            id: liveSwitch

            objectName: "systemSwitch"
            anchors.right: parent.right
            anchors.rightMargin: 16
            y: bar.stacked ? bar.height - height - 6 : (bar.height - height) / 2
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

        enabled: !panel.visible
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
        color: ShopTheme.messageFill

        Text {
            id: newest

            x: 16
            width: parent.width - 32
            horizontalAlignment: Text.AlignLeft
            anchors.verticalCenter: parent.verticalCenter
            text: root.shop.messages.length > 0 ? root.shop.messages[0] : ""
            textFormat: Text.PlainText
            color: ShopTheme.messageInk
            font.family: "Inter"
            font.pixelSize: ShopTheme.points(14)
            wrapMode: Text.Wrap
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
    }

    Rectangle {
        id: foot

        enabled: !panel.visible
        anchors.bottom: parent.bottom
        width: root.width
        height: register.implicitHeight + (root.height < 400 ? 16 : 26)
        color: ShopTheme.plate

        Rectangle {
            width: parent.width
            height: 1
            color: ShopTheme.edge
        }

        RowLayout {
            anchors.fill: parent
            anchors.leftMargin: 16
            anchors.rightMargin: 16
            spacing: 10

            ShopButton {
                id: register

                objectName: "register"
                Layout.fillWidth: true
                Layout.preferredWidth: 1
                implicitHeight: ShopTheme.points(root.height < 400 ? 40 : 46)
                filled: false
                text: "Register"
                enabled: !root.shop.busy
                onClicked: root.shop.registerUser()
            }

            ShopButton {
                objectName: "wallet"
                Layout.fillWidth: true
                Layout.preferredWidth: 1
                implicitHeight: ShopTheme.points(root.height < 400 ? 40 : 46)
                filled: false
                text: "Wallet"
                enabled: !root.shop.busy
                onClicked: root.shop.openWallet()
            }
        }
    }

    OutcomePanel {
        id: panel

        anchors.fill: parent
        outcome: root.shop.outcome
        onClosed: root.shop.clearOutcome()
    }
}
