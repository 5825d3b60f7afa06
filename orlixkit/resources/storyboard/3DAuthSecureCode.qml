import OrlixKit.Components

OxIssuerPage {
    heading: "Verify your card"
}
