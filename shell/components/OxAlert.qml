// SPDX-License-Identifier: Apache-2.0

pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T

// An alert over the screen, with its buttons side by side, or one below the other for large texts. Escape presses the way out, Enter the
// button in focus.
FocusScope {
    id: root

    required property var alert
    readonly property var look: root.alert.view
    readonly property int first: root.alert.styles.indexOf("standard") >= 0
                                 ? root.alert.styles.indexOf("standard")
                                 : Math.max(0, root.alert.cancelIndex)

    anchors.fill: parent
    focus: true

    Accessible.role: Accessible.Dialog
    Accessible.name: root.alert.title
    Accessible.description: root.alert.message

    Keys.onEscapePressed: root.alert.press(root.alert.cancelIndex)
    Keys.onUpPressed: scroll.contentY = Math.max(0, scroll.contentY - 40)
    Keys.onDownPressed: scroll.contentY = Math.min(scroll.contentHeight - scroll.height,
                                                   scroll.contentY + 40)

    // Nothing behind an alert can be touched.
    MouseArea {
        anchors.fill: parent
        acceptedButtons: Qt.AllButtons
        hoverEnabled: true
    }

    Rectangle {
        anchors.fill: parent
        color: "black"
        opacity: 0.35
    }

    Rectangle {
        id: box

        anchors.centerIn: parent
        width: Math.min(284, root.width - 32)
        height: scroll.height + buttons.height
        color: root.look.backgroundColor
        radius: root.look.cornerRadius
        border.width: root.look.borderWidth
        border.color: root.look.borderColor

        // A server's long words are scrolled, so that the buttons stay in the window.
        Flickable {
            id: scroll

            width: parent.width
            height: Math.min(words.implicitHeight, root.height - 32 - buttons.height)
            contentHeight: words.implicitHeight
            boundsBehavior: Flickable.StopAtBounds
            interactive: contentHeight > height
            clip: interactive

            T.ScrollBar.vertical: OxScrollBar {}

            Column {
                id: words

                x: 20
                width: scroll.width - 40
                topPadding: 20
                bottomPadding: 18
                spacing: 8

                Text {
                    objectName: "alert.title"
                    width: words.width
                    text: root.alert.title
                    textFormat: Text.PlainText
                    color: root.alert.textColor
                    font.family: OxTheme.family
                    font.pixelSize: OxTheme.points(root.alert.titleFontSize)
                    font.weight: OxTheme.weight(root.alert.titleFontName)
                    horizontalAlignment: Text.AlignHCenter
                    wrapMode: Text.Wrap
                    Accessible.role: Accessible.Heading
                    Accessible.name: root.alert.title
                }

                Text {
                    objectName: "alert.message"
                    width: words.width
                    text: OxTheme.drawable(root.alert.message)
                    textFormat: Text.PlainText
                    color: root.alert.textColor
                    font.family: OxTheme.family
                    font.pixelSize: OxTheme.points(root.alert.messageFontSize)
                    font.weight: OxTheme.weight(root.alert.messageFontName)
                    horizontalAlignment: Text.AlignHCenter
                    wrapMode: Text.Wrap
                    lineHeight: 1.15
                    Accessible.role: Accessible.StaticText
                    Accessible.name: root.alert.message
                }
            }
        }

        Grid {
            id: buttons

            anchors.bottom: parent.bottom
            anchors.horizontalCenter: parent.horizontalCenter
            columns: OxTheme.isNarrow(box.width) ? 1 : root.alert.buttons.length
            bottomPadding: 14
            spacing: 10

            Repeater {
                model: root.alert.buttons

                OxPlate {
                    required property int index
                    required property string modelData
                    readonly property string style: root.alert.styles[index]

                    objectName: "alert.button" + index
                    width: (box.width - 30 - buttons.spacing * (buttons.columns - 1)) / buttons.columns
                    height: OxTheme.points(44)
                    text: modelData
                    focus: index === root.first
                    letters: style === "destructive" ? OxTheme.destructive : root.look.tintColor
                    letterWeight: style === "standard" ? Font.Bold : Font.Medium
                    cornerRadius: root.look.cornerRadius
                    line: root.look.borderColor
                    onClicked: root.alert.press(index)
                }
            }
        }
    }
}
