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
            text: "Changed terms"
        }

        OxLink {
            outlet: sheet.screen.descriptionLabel
            Layout.fillWidth: true
            Layout.topMargin: 6
            lineHeight: 1.2
        }
    }

    foot: OxFoot {
        OxButton {
            id: out

            outlet: sheet.screen.declineButton
            actionName: "declineAction"
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
