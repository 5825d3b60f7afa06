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
            text: "Activation code"
        }

        OxLabel {
            outlet: sheet.screen.infoLabel
            Layout.fillWidth: true
            size: 15
            color: OxTheme.mutedText
        }

        OxField {
            id: code

            outlet: sheet.screen.codeField
            Layout.fillWidth: true
            Layout.topMargin: 4
            compact: sheet.compact
            size: 20
            weight: Font.Bold
        }
    }

    OxKeyboardBar {
        id: done

        field: code
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
