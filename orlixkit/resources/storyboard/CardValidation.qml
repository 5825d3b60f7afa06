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
            text: "Unlock your card"
        }

        OxLabel {
            outlet: sheet.screen.infoLabel
            Layout.fillWidth: true
            size: 14
            color: OxTheme.mutedText
            lineHeight: 1.15
        }

        Item {
            objectName: sheet.screen.dobGroupView.name
            visible: sheet.screen.dobGroupView.shown
            Layout.fillWidth: true
            Layout.topMargin: 4
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
