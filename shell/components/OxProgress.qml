// SPDX-License-Identifier: Apache-2.0

import QtQuick

// The progress indicator, above everything else. It does not mask touches itself; ScreenPresenter
// fades it.
Item {
    id: root

    readonly property var progress: orlixProgress // qmllint disable unqualified
    // What the plate leaves uncovered, such as the amount that is being paid.
    property rect keptInSight: Qt.rect(0, 0, 0, 0)

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
        id: plate

        readonly property real middle: (root.height - plate.height) / 2
        readonly property rect kept: root.keptInSight
        readonly property bool covers: plate.middle < plate.kept.y + plate.kept.height
                                       && plate.middle + plate.height > plate.kept.y
        readonly property real below: plate.kept.y + plate.kept.height + 8

        objectName: "progressPlate"
        anchors.horizontalCenter: parent.horizontalCenter
        // Where there is room for it: below the kept item, else above it.
        y: !plate.covers ? plate.middle
                         : plate.below + plate.height <= root.height
                           ? plate.below : Math.max(0, plate.kept.y - 8 - plate.height)
        width: Math.max(128, words.width + 40)
        height: words.y + words.height + 18
        radius: 14
        color: OxTheme.noticeFill
        border.width: 1
        border.color: OxTheme.noticeLine

        OxActivity {
            id: activity

            anchors.horizontalCenter: parent.horizontalCenter
            y: 22
            width: 36
            height: 36
            dotColor: OxTheme.noticeText
            Accessible.ignored: true
        }

        Text {
            id: words

            objectName: "progressStatus"
            anchors.horizontalCenter: parent.horizontalCenter
            y: activity.y + activity.height + 14
            width: Math.min(words.implicitWidth, root.width - 72)
            text: root.progress.status
            textFormat: Text.PlainText
            color: OxTheme.noticeText
            font.family: OxTheme.family
            font.pixelSize: OxTheme.points(15)
            font.weight: Font.Medium
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            Accessible.ignored: true
        }
    }
}
