// SPDX-License-Identifier: Apache-2.0

#include "sandbox/Pages.h"

#include <fmt/format.h>

namespace orlix::sandbox {

namespace {

constexpr std::string_view kStyle = R"(
body{margin:0;font-family:Inter,Helvetica,Arial,sans-serif;background:#f3f4f7;color:#1b1e26}
header{background:#1b1e26;color:#fff;padding:10px 14px;font-weight:bold}
main{padding:12px;max-width:32em;margin:0 auto}
p{margin:0 0 8px}
.card{background:#fff;border-radius:8px;padding:14px;box-shadow:0 1px 4px rgba(0,0,0,.15)}
label{display:block;margin:8px 0 6px}
input[type=text]{font-size:20px;letter-spacing:4px;padding:8px;width:100%;box-sizing:border-box;
border:1px solid #707174;border-radius:5px}
button{font:inherit;padding:10px 18px;margin:14px 8px 0 0;border-radius:5px;border:1px solid #1b1e26}
#submit{background:#1b1e26;color:#fff}#cancel{background:#fff;color:#1b1e26}
#message{color:#b3261e;min-height:1.2em}
)";

std::string page(std::string_view title, std::string_view body) {
  return fmt::format(
      "<!DOCTYPE html>\n<html><head><meta charset='utf-8'>"
      "<meta name='viewport' content='width=device-width, initial-scale=1.0'>"
      "<title>{}</title><style>{}</style></head><body>{}</body></html>",
      title, kStyle, body);
}

std::string hidden(std::string_view name, std::string_view value) {
  return fmt::format("<input type='hidden' name='{}' value='{}'>", name, escaped(value));
}

/// `text` inside a double-quoted script string: nothing in it can end the string or the script.
std::string scriptText(std::string_view text) {
  std::string out;
  for (const char c : text) {
    const bool plain = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
                       c == '+' || c == '/' || c == '=' || c == '-' || c == '_' || c == '.';
    out += plain ? std::string(1, c) : fmt::format("\\x{:02x}", static_cast<unsigned char>(c));
  }
  return out;
}

}  // namespace

std::string escaped(std::string_view text) {
  std::string out;
  for (const char c : text) {
    switch (c) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '"':
        out += "&quot;";
        break;
      case '\'':
        out += "&#39;";
        break;
      default:
        out += c;
    }
  }
  return out;
}

std::string issuerPage(const IssuerForm& form) {
  const std::string what = form.amount.empty()
                               ? "Confirm that this card is yours."
                               : fmt::format("Confirm the payment of <b id='amount'>R&nbsp;{}</b>.",
                                             escaped(form.amount));
  return page(
      "First Sandbox Bank",
      fmt::format("<header>First Sandbox Bank</header><main><div class='card'><p>{}</p>"
                  "<p id='message' data-wrong='{}'>{}</p><form id='authentication' method='post' "
                  "action='{}'>"
                  "{}{}{}<label for='otp'>One-time code</label>"
                  "<input type='text' id='otp' name='otp' inputmode='numeric' autocomplete='off'>"
                  "<button type='submit' id='submit' name='choice' value='submit'>Confirm</button>"
                  "<button type='submit' id='cancel' name='choice' value='cancel'>Cancel</button>"
                  "</form></div></main>",
                  what, form.wrongCodes, form.wrongCodes > 0 ? "That code is not right." : "",
                  escaped(form.action), hidden("PaReq", form.paReq),
                  hidden("TermUrl", form.termUrl), hidden("MD", form.md)));
}

std::string returningPage(std::string_view termUrl, std::string_view paRes, std::string_view md) {
  return page("First Sandbox Bank",
              fmt::format("<header>First Sandbox Bank</header><main><p>Returning to the shop...</p>"
                          "<form id='return' method='post' action='{}'>{}{}</form></main>"
                          "<script>document.getElementById('return').submit();</script>",
                          escaped(termUrl), hidden("PaRes", paRes), hidden("MD", md)));
}

std::string waitingPage(std::string_view title, std::string_view text) {
  return page(escaped(title), fmt::format("<header>{}</header><main><p id='waiting'>{}</p></main>",
                                          escaped(title), escaped(text)));
}

std::string terminationPage(std::string_view paRes, bool again, size_t padding) {
  // Browsers write attributes with double quotes, so no element before the script has any.
  std::string out = fmt::format(
      "<!DOCTYPE html>\n<html><head><script>var Vello=window.Vello||{{handle:function(){{}}}};"
      "Vello.handle(\"{}\");</script><title>Please wait</title></head><body><p>Please wait...</p>",
      scriptText(paRes));
  if (again) {
    out += fmt::format(
        "<form id='again' method='post'>{}</form><script>window.addEventListener('load',"
        "function(){{setTimeout(function(){{document.getElementById('again').submit();}},50);}});"
        "</script>",
        hidden("PaRes", paRes));
  }
  if (padding > 0) out += "<!--" + std::string(padding, '.') + "-->";
  return out + "</body></html>";
}

std::string termsPage(long long version) {
  return page(
      "Terms and conditions",
      fmt::format(
          "<header>Orlix terms and conditions</header><main><p id='version'>Version {}</p>"
          "<h2>1. What this is</h2><p>Your wallet keeps cards on a server, so that you can pay "
          "with "
          "them from applications that you trust.</p>"
          "<h2>2. What you must do</h2><p>Keep your PIN to yourself. Tell your bank at once when "
          "your "
          "telephone or a card is lost.</p>"
          "<h2>3. What is kept</h2><p>Your mobile number, the cards that you add, and your "
          "payments. "
          "A position may be sent along with a payment to help prevent fraud.</p>"
          "<h2>4. This server</h2><p>This is a sandbox: no money moves, and nothing that you type "
          "here should be real.</p></main>",
          version));
}

}  // namespace orlix::sandbox
