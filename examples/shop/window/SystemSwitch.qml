// SPDX-License-Identifier: Apache-2.0

pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T

// Live or test: the side that counts is filled, and the test system is as yellow as its warning.
T.Switch {
    id: root

    implicitWidth: ShopTheme.points(116)
    implicitHeight: ShopTheme.points(34)
    opacity: root.enabled ? 1 : 0.45

    Accessible.role: Accessible.CheckBox
    Accessible.name: "Live system"
    Accessible.checkable: true
    Accessible.checked: root.checked
    Accessible.onToggleAction: root.toggle()
    Accessible.onPressAction: root.toggle()

    Keys.onReturnPressed: root.toggle()
    Keys.onEnterPressed: root.toggle()

    indicator: Rectangle {
        anchors.fill: parent
        radius: height / 2
        color: "#0e5039"
        border.width: root.visualFocus ? 2 : 0
        border.color: "#f2a93b"

        Rectangle {
            x: root.checked !== root.mirrored ? parent.width / 2 : 3
            y: 3
            width: parent.width / 2 - 3
            height: parent.height - 6
            radius: height / 2
            color: root.checked ? "white" : "#ffc93c"
        }

        Row {
            anchors.fill: parent

            Repeater {
                model: ["Test", "Live"]

                Text {
                    required property int index
                    required property string modelData

                    width: root.width / 2
                    height: root.height
                    text: modelData
                    color: root.checked === (index === 1) ? "#14211b" : "#b9d3c7"
                    font.family: "Inter"
                    font.pixelSize: ShopTheme.points(13)
                    font.weight: Font.DemiBold
                    horizontalAlignment: Text.AlignHCenter
                    verticalAlignment: Text.AlignVCenter
                }
            }
        }
    }
}
