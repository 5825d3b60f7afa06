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
            text: "Confirm your number"
        }

        OxLabel {
            outlet: sheet.screen.infoLabel
            Layout.fillWidth: true
            size: 15
            color: OxTheme.mutedText
        }

        OxField {
            outlet: sheet.screen.msisdnField
            Layout.fillWidth: true
            Layout.topMargin: 4
            compact: sheet.compact
        }
    }

    foot: OxFoot {
        OxButton {
            id: out

            outlet: sheet.screen.backButton
            actionName: "back"
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
