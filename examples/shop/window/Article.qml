// SPDX-License-Identifier: Apache-2.0

import QtQuick
import QtQuick.Layouts

// One thing that the shop sells.
Rectangle {
    id: root

    required property var article
    required property int number
    required property bool buyable

    signal bought

    implicitHeight: Math.max(88, content.implicitHeight + 24)
    radius: 14
    color: ShopTheme.plate
    border.width: 1
    border.color: ShopTheme.edge

    RowLayout {
        id: content

        anchors.fill: parent
        anchors.margins: 12
        spacing: 12

        Image {
            Layout.preferredWidth: 64
            Layout.preferredHeight: 64
            source: root.article.picture
            sourceSize.width: 64 * Screen.devicePixelRatio
            sourceSize.height: 64 * Screen.devicePixelRatio
            Accessible.ignored: true
        }

        ColumnLayout {
            Layout.fillWidth: true
            spacing: 2

            Text {
                Layout.fillWidth: true
                text: root.article.name
                textFormat: Text.PlainText
                color: ShopTheme.ink
                font.family: "Inter"
                font.pixelSize: ShopTheme.points(15)
                font.weight: Font.DemiBold
                wrapMode: Text.Wrap
                Accessible.role: Accessible.StaticText
                Accessible.name: text
            }

            Text {
                Layout.fillWidth: true
                text: root.article.detail
                textFormat: Text.PlainText
                color: ShopTheme.mutedInk
                font.family: "Inter"
                font.pixelSize: ShopTheme.points(12)
                wrapMode: Text.Wrap
                Accessible.role: Accessible.StaticText
                Accessible.name: text
            }

            Text {
                text: root.article.price
                textFormat: Text.PlainText
                color: ShopTheme.price
                font.family: "Inter"
                font.pixelSize: ShopTheme.points(15)
                font.weight: Font.Bold
                Accessible.role: Accessible.StaticText
                Accessible.name: text
            }
        }

        ShopButton {
            objectName: "pay" + root.number
            text: "Pay"
            enabled: root.buyable
            onClicked: root.bought()
            Accessible.description: root.article.name + ", " + root.article.price
        }
    }
}
