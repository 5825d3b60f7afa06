// SPDX-License-Identifier: Apache-2.0

import QtQuick
import QtQuick.Layouts
import OrlixKit.Components

OxSheet {
    id: sheet

    title: heading.text
    ribbon: true
    primary: done
    cancel: done

    OxKeyboardScroll {
        sheet: sheet
        spacing: sheet.compact ? 8 : 14

        OxTitle {
            id: heading

            Layout.fillWidth: true
            text: "Your wallet"
        }

        OxTapArea {
            outlet: sheet.screen.cardView
            Layout.fillWidth: true
            implicitHeight: Math.max(sheet.compact ? 120 : 164, 48 + 16 + 8 + hint.implicitHeight + 18)
            roundness: 14
            text: sheet.screen.cardHintView.text

            Rectangle {
                anchors.fill: parent
                radius: 14
                border.width: 1
                border.color: OxTheme.line
                gradient: Gradient {
                    GradientStop {
                        position: 0
                        color: "#3b4254"
                    }
                    GradientStop {
                        position: 1
                        color: "#262b38"
                    }
                }

                OxImage {
                    outlet: sheet.screen.cardImageView
                    anchors.right: parent.right
                    anchors.top: parent.top
                    anchors.margins: 16
                    width: 75
                    height: 48
                }

                OxLabel {
                    id: hint

                    outlet: sheet.screen.cardHintView
                    anchors.left: parent.left
                    anchors.right: parent.right
                    anchors.bottom: parent.bottom
                    anchors.margins: 18
                    size: 24
                    font.weight: Font.DemiBold
                    font.letterSpacing: 1
                }
            }
        }

        Text {
            Layout.fillWidth: true
            text: "Tap the card to change your cards."
            color: OxTheme.mutedText
            font.family: OxTheme.family
            font.pixelSize: OxTheme.points(13)
            wrapMode: Text.Wrap
            horizontalAlignment: Text.AlignHCenter
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
    }

    foot: OxFoot {
        OxButton {
            id: done

            outlet: sheet.screen.doneButton
            actionName: "DoneClicked"
            Layout.fillWidth: true
            primary: true
            compact: sheet.compact
        }
    }
}
