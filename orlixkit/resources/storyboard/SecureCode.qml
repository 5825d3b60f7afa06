import OrlixKit.Components

OxIssuerPage {
    heading: "Confirm with your bank"
}
