// SPDX-License-Identifier: Apache-2.0

import QtQuick
import OrlixKit

Window {
    id: window

    required property string server
    required property string anchor
    property alias code: payment.code

    function end(text: string): void {
        console.info(text);
        Qt.quit();
    }

    // After Cancel, an error or a failed payment, money may still have been taken.
    function endUnpaid(text: string): void {
        if (payment.purchaseState() === OrlixCheckout.PurchaseUnknown) {
            text = "It is not known yet whether this was paid. Ask about "
                    + (payment.purchaseReference() || payment.code);
        }
        window.end(text);
    }

    width: 375
    height: 667
    visible: true
    Component.onCompleted: {
        Orlix.testAddress = window.server;
        Orlix.anchorFile = window.anchor;
        payment.checkout();
    }

    OrlixCheckout {
        id: payment

        apiKey: "qml-host-key"
        system: OrlixCheckout.Test
        onPaymentSucceeded: reference => window.end("Paid. Reference " + reference)
        onPaymentFailed: reference => window.endUnpaid("Not paid. Reference " + reference)
        onErrorOccurred: code => window.endUnpaid("Not paid: error " + code)
        onCancelled: window.endUnpaid("Cancelled")
        onEndedWithoutOutcome: window.endUnpaid("Not paid")
    }
}
