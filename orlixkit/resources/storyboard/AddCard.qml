// SPDX-License-Identifier: Apache-2.0

import QtQuick
import QtQuick.Layouts
import OrlixKit.Components

OxSheet {
    id: sheet

    title: heading.text
    ribbon: true
    primary: main
    cancel: out

    OxKeyboardScroll {
        sheet: sheet

        OxTitle {
            id: heading

            Layout.fillWidth: true
            text: "Add a card"
        }

        OxField {
            outlet: sheet.screen.cardNumberField
            Layout.fillWidth: true
            compact: sheet.compact
        }

        OxField {
            outlet: sheet.screen.cardHolderField
            Layout.fillWidth: true
            compact: sheet.compact
        }

        GridLayout {
            Layout.fillWidth: true
            columns: sheet.narrow ? 1 : 2
            columnSpacing: 10
            rowSpacing: sheet.gap

            Item {
                objectName: sheet.screen.expiryDateGroupView.name
                visible: sheet.screen.expiryDateGroupView.shown
                Layout.preferredWidth: OxTheme.points(104)
                Layout.fillWidth: sheet.narrow
                implicitHeight: expiry.implicitHeight

                OxField {
                    id: expiry

                    outlet: sheet.screen.expiryDateField
                    label: sheet.screen.expiryDateLabel
                    anchors.fill: parent
                    compact: sheet.compact
                }
            }

            Item {
                objectName: sheet.screen.dateOfBirthGroupView.name
                visible: sheet.screen.dateOfBirthGroupView.shown
                Layout.fillWidth: true
                implicitHeight: birth.implicitHeight

                OxField {
                    id: birth

                    outlet: sheet.screen.dateOfBirthField
                    label: sheet.screen.dateOfBirthLabel
                    anchors.fill: parent
                    compact: sheet.compact
                }
            }
        }

        Item {
            objectName: sheet.screen.cardAccountGroupView.name
            visible: sheet.screen.cardAccountGroupView.shown
            Layout.fillWidth: true
            implicitHeight: account.implicitHeight

            OxDropDown {
                id: account

                outlet: sheet.screen.cardAccountField
                label: sheet.screen.cardAccountLabel
                overlay: sheet
                anchors.fill: parent
                compact: sheet.compact
            }
        }
    }

    foot: OxFoot {
        OxButton {
            id: out

            outlet: sheet.screen.cancelButton
            actionName: "cancelAction"
            Layout.preferredWidth: OxTheme.points(92)
            Layout.fillWidth: sheet.narrow
            compact: sheet.compact
        }

        OxButton {
            id: main

            outlet: sheet.screen.proceedButton
            actionName: "proceedAction"
            Layout.fillWidth: true
            primary: true
            compact: sheet.compact
        }
    }
}
