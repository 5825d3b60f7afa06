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
        bar: done

        OxTitle {
            id: heading

            Layout.fillWidth: true
            text: "Your mobile number"
        }

        GridLayout {
            Layout.fillWidth: true
            columns: sheet.narrow ? 1 : 2
            columnSpacing: 8
            rowSpacing: sheet.gap

            OxDropDown {
                outlet: sheet.screen.countryCodeField
                overlay: sheet
                Layout.preferredWidth: OxTheme.points(100)
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
        id: done

        field: number
        actionName: "DoneClicked"
        onClicked: sheet.screen.perform("DoneClicked")
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
