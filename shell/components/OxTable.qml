// SPDX-License-Identifier: Apache-2.0

pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T

// A table outlet. `light` is the style of a long list to choose from, the other that of the user's
// cards.
ListView {
    id: root

    required property var outlet
    property bool light: false
    property string spokenName: ""
    property string spokenButton: ""
    readonly property int contentHeightOfRow: OxTheme.points(40)
    // Beside the rows, so that the bar covers none of their buttons.
    readonly property int barSpace: 10
    // The text of a card below its picture and button.
    readonly property bool stacked: !root.light && OxTheme.isNarrow(root.width)
    readonly property int checkedRow: root.outlet.checkedRow

    objectName: root.outlet.name
    visible: root.outlet.shown
    opacity: root.outlet.alpha
    model: root.outlet.rows
    clip: true
    boundsBehavior: Flickable.StopAtBounds
    activeFocusOnTab: true
    currentIndex: Math.max(0, root.checkedRow)
    spacing: root.light ? 0 : 8
    highlightMoveDuration: 0

    Accessible.role: Accessible.List
    Accessible.name: root.spokenName

    Keys.onReturnPressed: root.outlet.selectRow(root.currentIndex)
    Keys.onEnterPressed: root.outlet.selectRow(root.currentIndex)
    Keys.onSpacePressed: root.outlet.selectRow(root.currentIndex)
    Keys.onDeletePressed: root.outlet.pressRowButton(root.currentIndex)
    Keys.onPressed: event => {
        const page = Math.max(1, Math.floor(root.height / root.contentHeightOfRow) - 1);
        const steps = {
            [Qt.Key_Home]: -root.count,
            [Qt.Key_End]: root.count,
            [Qt.Key_PageUp]: -page,
            [Qt.Key_PageDown]: page
        };
        if (event.key in steps && root.count > 0) {
            root.currentIndex = Math.max(0, Math.min(root.count - 1,
                                                     root.currentIndex + steps[event.key]));
            event.accepted = true;
        }
    }

    function showChecked(): void {
        if (root.checkedRow >= 0 && root.height > 0) {
            root.positionViewAtIndex(root.checkedRow, ListView.Center);
        }
    }

    // The drawn row, scrolled into sight; null when there is none.
    function rowItem(row: int): Item {
        root.positionViewAtIndex(row, ListView.Contain);
        root.forceLayout();
        return root.itemAtIndex(row);
    }

    Component.onCompleted: root.showChecked()
    onHeightChanged: root.showChecked()

    T.ScrollBar.vertical: OxScrollBar {
        barColor: root.light ? OxTheme.listBar : OxTheme.line
    }

    delegate: T.ItemDelegate {
        id: row

        required property int index
        required property var model
        readonly property real middle: root.stacked ? 22 : row.height / 2

        objectName: root.outlet.name + ".row" + row.index
        x: !root.light && OxTheme.mirrored ? root.barSpace : 0
        width: root.width - (root.light ? 0 : root.barSpace)
        height: root.stacked ? 44 + words.implicitHeight
                             : Math.max(root.contentHeightOfRow + (root.light ? 4 : 0),
                                        words.implicitHeight + 8)
        opacity: row.enabled ? 1 : OxTheme.disabled
        text: row.model.text
        enabled: root.outlet.reachable
        focusPolicy: Qt.NoFocus
        onClicked: {
            root.currentIndex = row.index;
            root.outlet.selectRow(row.index);
        }

        Accessible.role: Accessible.ListItem
        Accessible.name: row.text
        Accessible.description: OxTheme.described("", row.enabled)
        Accessible.checked: row.model.checkmark
        Accessible.checkable: true
        Accessible.onPressAction: row.clicked()

        background: Rectangle {
            radius: root.light ? 0 : 6
            color: root.light ? (row.down ? OxTheme.listLine : OxTheme.listFill)
                              : (row.down ? OxTheme.line : OxTheme.rowFill)

            Rectangle {
                anchors.bottom: parent.bottom
                x: 16
                width: parent.width - 16
                height: 1
                color: OxTheme.listLine
                visible: root.outlet.separators
            }

            Rectangle {
                anchors.fill: parent
                anchors.margins: 1
                radius: parent.radius
                color: "transparent"
                border.width: 2
                border.color: root.light ? OxTheme.listMark : OxTheme.accent
                visible: root.activeFocus && row.ListView.isCurrentItem
            }
        }

        OxPicture {
            id: picture

            anchors.left: parent.left
            anchors.leftMargin: 10
            y: row.middle - height / 2
            width: 44
            height: 28
            visible: row.model.imageSource.toString() !== ""
            source: row.model.imageSource
        }

        Text {
            id: words

            anchors.left: picture.visible && !root.stacked ? picture.right : parent.left
            anchors.leftMargin: picture.visible ? 12 : 16
            anchors.right: parent.right
            anchors.rightMargin: root.stacked ? 12 : (row.model.hasButton ? 44 : 12)
                                                + (row.model.checkmark ? 32 : 0)
            y: root.stacked ? 38 : 0
            height: parent.height - y
            text: row.text
            textFormat: Text.PlainText
            color: root.light ? OxTheme.listText : OxTheme.text
            font.family: OxTheme.family
            font.pixelSize: OxTheme.points(root.light ? 14 : 15)
            horizontalAlignment: Text.AlignLeft
            font.weight: row.model.checkmark ? Font.DemiBold : Font.Normal
            verticalAlignment: Text.AlignVCenter
            wrapMode: Text.Wrap
        }

        OxPicture {
            objectName: row.objectName + ".mark"
            anchors.right: parent.right
            anchors.rightMargin: row.model.hasButton ? 44 : 14
            y: row.middle - height / 2
            width: 22
            height: 22
            visible: row.model.checkmark
            source: OxTheme.tinted("checkmark", root.light ? OxTheme.listMark : OxTheme.accent)
        }

        // Made only for rows that have one: a long list is there at once.
        Repeater {
            model: row.model.hasButton ? 1 : 0

            T.Button {
                id: rowButton

                objectName: row.objectName + ".button"
                // Not by anchors: a repeater takes the parent away first.
                x: OxTheme.mirrored ? 5 : row.width - 35
                y: row.middle - 15
                width: 30
                height: 30
                visible: row.model.hasButton
                enabled: root.outlet.reachable
                onClicked: root.outlet.pressRowButton(row.index)

                Accessible.role: Accessible.Button
                Accessible.name: root.spokenButton + " " + row.text
                Accessible.description: OxTheme.described("", rowButton.enabled)
                Accessible.onPressAction: rowButton.clicked()
                Keys.onReturnPressed: rowButton.clicked()
                Keys.onEnterPressed: rowButton.clicked()

                background: Rectangle {
                    radius: 6
                    color: rowButton.down ? OxTheme.line : "transparent"

                    OxFocusRing {
                        anchors.margins: 0
                        on: rowButton.visualFocus
                    }
                }

                contentItem: OxPicture {
                    width: 22
                    height: 22
                    source: row.model.buttonImage
                }
            }
        }
    }
}
