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
            text: "Your mobile number"
        }

        RowLayout {
            Layout.fillWidth: true
            spacing: 8

            OxDropDown {
                outlet: sheet.screen.countryCodeField
                overlay: sheet
                Layout.preferredWidth: 100
                compact: sheet.compact
                caption: "Code"
                prefix: "+"
            }

            OxField {
                id: number

                outlet: sheet.screen.msisdnField
                Layout.fillWidth: true
                compact: sheet.compact
            }
        }

        OxLink {
            outlet: sheet.screen.descriptionLabel
            Layout.fillWidth: true
            Layout.topMargin: 6
            lineHeight: 1.15
        }
    }

    OxKeyboardBar {
        field: number
        actionName: "DoneClicked"
        onClicked: sheet.screen.perform("DoneClicked")
    }

    foot: OxFoot {
        OxButton {
            id: out

            outlet: sheet.screen.cancelButton
            actionName: "cancelAction"
            Layout.preferredWidth: 92
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
