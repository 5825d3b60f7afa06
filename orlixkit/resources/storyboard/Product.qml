// SPDX-License-Identifier: Apache-2.0

import QtQuick
import QtQuick.Layouts
import OrlixKit.Components

OxSheet {
    id: sheet

    title: "Payment"
    primary: proceed
    cancel: cancel
    keptInSight: amountRow

    head: Item {
        width: sheet.width
        height: banner.visible ? banner.height + (sheet.compact ? 14 : 24) : 0

        Rectangle {
            id: banner

            x: 8
            y: 8
            width: parent.width - 16
            height: warning.height + (sheet.compact ? 8 : 12)
            visible: sheet.screen.testWarningLabel.shown
            radius: 6
            color: OxTheme.warning

            OxLabel {
                id: warning

                outlet: sheet.screen.testWarningLabel
                anchors.verticalCenter: parent.verticalCenter
                x: 8
                width: parent.width - 16
                size: 12
                font.weight: Font.Bold
                color: OxTheme.warningText
                horizontalAlignment: Text.AlignHCenter
            }
        }
    }

    OxKeyboardScroll {
        sheet: sheet

        OxLabel {
            outlet: sheet.screen.merchantView
            Layout.fillWidth: true
            size: sheet.compact ? 14 : 16
            color: OxTheme.mutedText
            horizontalAlignment: Text.AlignHCenter
        }

        RowLayout {
            id: amountRow

            objectName: "amount"
            Layout.alignment: Qt.AlignHCenter
            Layout.fillWidth: sheet.screen.amountGroupView.shown
            Layout.maximumWidth: sheet.width - 2 * sheet.margin
            Layout.bottomMargin: sheet.compact ? 0 : 6
            spacing: 10

            OxLabel {
                outlet: sheet.screen.currencyLabel
                Layout.alignment: Qt.AlignVCenter
                size: 18
                color: OxTheme.mutedText
                font.weight: Font.Medium
                wrapMode: Text.NoWrap
            }

            OxLabel {
                outlet: sheet.screen.amountView
                Layout.fillWidth: true
                Layout.maximumWidth: implicitWidth
                size: sheet.compact ? 28 : 36
                font.weight: Font.Bold
                wrapMode: Text.NoWrap
                fontSizeMode: Text.HorizontalFit
                minimumPixelSize: 14
            }

            Item {
                objectName: sheet.screen.amountGroupView.name
                Layout.preferredWidth: 200
                Layout.fillWidth: true
                implicitHeight: amount.implicitHeight
                visible: sheet.screen.amountGroupView.shown

                OxField {
                    id: amount

                    outlet: sheet.screen.inputAmountField
                    anchors.fill: parent
                    compact: sheet.compact
                    size: sheet.compact ? 18 : 20
                    weight: Font.Bold
                }
            }
        }

        OxTapArea {
            outlet: sheet.screen.cardView
            Layout.fillWidth: true
            implicitHeight: Math.max(sheet.compact ? 44 : 54, hint.implicitHeight + 12)
            text: sheet.screen.cardHintView.text

            OxImage {
                id: brand

                outlet: sheet.screen.cardImageView
                anchors.left: parent.left
                anchors.leftMargin: 10
                anchors.verticalCenter: parent.verticalCenter
                width: sheet.compact ? 48 : 56
                height: sheet.compact ? 31 : 36
            }

            OxLabel {
                id: hint

                outlet: sheet.screen.cardHintView
                anchors.left: brand.right
                anchors.leftMargin: 12
                anchors.right: marker.left
                height: parent.height
                size: 17
                font.weight: Font.DemiBold
                verticalAlignment: Text.AlignVCenter
                wrapMode: Text.NoWrap
                fontSizeMode: Text.HorizontalFit
                minimumPixelSize: 11
            }

            OxImage {
                id: marker

                outlet: sheet.screen.cardViewDropdown
                anchors.right: parent.right
                anchors.rightMargin: 10
                anchors.verticalCenter: parent.verticalCenter
                width: 24
                height: 24
            }
        }

        GridLayout {
            Layout.fillWidth: true
            Layout.topMargin: 2
            columns: sheet.narrow ? 1 : 2
            columnSpacing: 10
            rowSpacing: sheet.gap

            ColumnLayout {
                objectName: sheet.screen.cvvGroupView.name
                visible: sheet.screen.cvvGroupView.shown
                Layout.fillWidth: true
                Layout.preferredWidth: 100
                Layout.alignment: Qt.AlignTop
                spacing: 4

                OxField {
                    outlet: sheet.screen.cvvField
                    Layout.fillWidth: true
                    compact: sheet.compact
                }

                OxLabel {
                    outlet: sheet.screen.cvvInfoLabel
                    Layout.fillWidth: true
                    size: 11
                    color: OxTheme.mutedText
                }
            }

            Item {
                objectName: sheet.screen.pinGroupView.name
                visible: sheet.screen.pinGroupView.shown
                Layout.fillWidth: true
                Layout.preferredWidth: 100
                Layout.alignment: Qt.AlignTop
                implicitHeight: pin.implicitHeight
                implicitWidth: pin.implicitWidth

                OxField {
                    id: pin

                    outlet: sheet.screen.pinField
                    anchors.fill: parent
                    compact: sheet.compact
                }
            }
        }
    }

    foot: OxFoot {
        OxPlate {
            id: cancel

            objectName: "cancelAction"
            Layout.preferredWidth: OxTheme.points(92)
            Layout.fillWidth: sheet.narrow
            compact: sheet.compact
            enabled: sheet.screen.proceedButton.reachable
            text: "CANCEL"
            onClicked: sheet.screen.perform("cancelAction")
        }

        OxButton {
            id: proceed

            outlet: sheet.screen.proceedButton
            actionName: "proceedAction"
            Layout.fillWidth: true
            primary: true
            compact: sheet.compact
        }
    }
}
