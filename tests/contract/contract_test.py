# SPDX-License-Identifier: Apache-2.0
"""That the check of the protocol's description fails when it must. The exchanges are those of the
document's own examples; scripts/check-contract runs this in the test run's stage "contract"."""
import copy
import dataclasses
import json
import pathlib
import re
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "scripts"))

import contract  # noqa: E402
import recordings  # noqa: E402

TOKENS = {"content-type": "application/json", "x-session-token1": "a", "x-session-token2": "b"}
CONTRACT = contract.Contract.load()
DOCUMENT = CONTRACT.document
PURCHASE = {"code": "C", "cardId": 1, "billingListId": 0, "shippingListId": 0, "amount": "25.00",
            "pinData": {"pinBlock": "0123456789ABCDEF"}}
PAID = {"status": "SUCCESS", "transactionId": 7}


def examples(content):
    yield from (one["value"] for one in content.get("examples", {}).values())
    if "example" in content:
        yield content["example"]


def exchange(path="/vello/purchase/TALU", body=None, answer=None, **changes):
    values = {"method": "POST", "path": path, "headers": dict(TOKENS), "status": 200,
              "body": json.dumps(PURCHASE if body is None else body),
              "answer": json.dumps(PAID if answer is None else answer),
              "content_type": "application/json", "place": "here"}
    return recordings.Exchange(**{**values, **changes})


def replaced(**texts):
    """A good exchange but for these."""
    return dataclasses.replace(exchange(), **texts)


def changed(value, path, new):
    """A copy in which the value at the path is another; None takes it away."""
    out = copy.deepcopy(value)
    inner = out
    for step in path[:-1]:
        inner = inner[step]
    if new is None:
        del inner[path[-1]]
    else:
        inner[path[-1]] = new
    return out


def complaints(document, *exchanges):
    check = contract.Check(CONTRACT if document is DOCUMENT else contract.Contract(document))
    for one in exchanges:
        check.add(one)
    return sorted(words for words, _, _ in check.complaints.values())


class Document(unittest.TestCase):
    def test_its_schemas_and_examples_hold(self):
        self.assertEqual(list(CONTRACT.faults_of_itself()), [])

    def test_every_pair_of_examples_is_a_good_exchange(self):
        pairs = 0
        for one in CONTRACT.operations:
            if "application/json" not in one.item.get("requestBody", {}).get("content", {}):
                continue
            path = "/vello" + one.template.replace("{node}", "TALU")
            for status, answer in one.item["responses"].items():
                content = CONTRACT.resolved(answer)["content"]["application/json"]
                for asked in examples(one.item["requestBody"]["content"]["application/json"]):
                    for told in examples(content):
                        pairs += 1
                        self.assertEqual(complaints(DOCUMENT, exchange(
                            path, asked, told, status=int(status))), [])
        self.assertGreater(pairs, 80)

    def test_every_field_is_explained(self):
        for name, schema in DOCUMENT["components"]["schemas"].items():
            for field, inner in schema.get("properties", {}).items():
                target = DOCUMENT["components"]["schemas"].get(inner.get("$ref", "").split("/")[-1])
                self.assertTrue(inner.get("description") or (target or {}).get("description"),
                                f"{name}.{field}")

    def test_every_object_is_closed(self):
        for name, schema in DOCUMENT["components"]["schemas"].items():
            if schema.get("type") == "object":
                self.assertIs(schema.get("additionalProperties"), False, name)

    def test_tells_no_digits_apart(self):
        """The walks record requests that differ in digits once only."""
        for pattern in re.findall(r"pattern: '(.*)'", contract.DOCUMENT.read_text("utf-8")):
            rest = re.sub(r"\{[\d,]+\}|0-9", "", pattern)
            self.assertIsNone(re.search(r"\d", rest), pattern)


class BrokenDocument(unittest.TestCase):
    """The document says something else than the exchange, which is right."""

    def test_is_noticed(self):
        schemas = ("components", "schemas")
        purchase = schemas + ("PurchaseRequest",)
        answer = schemas + ("PurchaseAnswer",)
        post = ("paths", "/purchase/{node}", "post")
        rows = [
            ("a field more is required", purchase + ("required",), ["code", "tipAmount"],
             "request: body: 'tipAmount' is a required property"),
            ("a field has another type", purchase + ("properties", "code", "type"), "integer",
             "request: body: code: 'C' is not of type 'integer'"),
            ("a field is gone", purchase + ("properties", "amount"), None,
             "request: body: Additional properties are not allowed ('amount' was unexpected)"),
            ("a nested field is gone", schemas + ("PinData", "properties", "pinBlock"), None,
             "request: body: pinData: Additional properties are not allowed ('pinBlock'"),
            ("a pattern is narrower", schemas + ("PinData", "properties", "pinBlock", "pattern"),
             "^[0-9]{16}$", "request: body: pinData.pinBlock: '0123456789ABCDEF' does not match"),
            ("an answer's field is gone", answer + ("properties", "transactionId"), None,
             "answer 200: body: Additional properties are not allowed ('transactionId'"),
            ("an answer's field has another type",
             answer + ("properties", "transactionId", "type"), "string",
             "answer 200: body: transactionId: 7 is not of type 'string'"),
            ("a status text is gone", answer + ("properties", "status", "enum"), ["ERROR"],
             "answer 200: body: status: 'SUCCESS' is not one of ['ERROR']"),
            ("a status code is gone", post + ("responses", "200"), None,
             "answer 200: status 200: not documented"),
            ("the path is gone", ("paths", "/purchase/{node}"), None,
             "request: the path is not documented"),
            ("the method is another", post[:-1], {"get": DOCUMENT["paths"]["/purchase/{node}"]["post"]},
             "request: the path takes GET only"),
            ("the node is another", ("components", "parameters", "Node", "schema", "const"), "OTHER",
             "request: path: node: 'OTHER' was expected"),
            ("a token has another header",
             ("components", "securitySchemes", "SessionToken2", "name"), "x-other",
             "request: header x-other: missing"),
        ]
        for name, path, new, expected in rows:
            with self.subTest(name):
                found = complaints(changed(DOCUMENT, path, new), exchange())
                self.assertTrue(any(expected in one for one in found), found)

    def test_whose_schema_is_none_is_refused(self):
        broken = changed(DOCUMENT, ("components", "schemas", "Card", "properties"), ["colour"])
        with self.assertRaisesRegex(recordings.Unreadable, "components.schemas.Card: properties: "):
            contract.Contract(broken)

    def test_with_a_dead_reference_is_refused(self):
        with self.assertRaisesRegex(recordings.Unreadable, "schemas/CardId"):
            contract.Contract(changed(DOCUMENT, ("components", "schemas", "CardId"), None))

    def test_is_noticed_by_its_own_examples(self):
        broken = changed(DOCUMENT, ("components", "schemas", "Card", "required"), ["colour"])
        self.assertIn("'colour' is a required property",
                      next(contract.Contract(broken).faults_of_itself()))


class BrokenExchange(unittest.TestCase):
    def test_is_complained_about_with_the_field(self):
        no_token = {"content-type": "application/json", "x-session-token1": "a"}
        secure = {"PaRes": "x", "secureCodeId": 1}
        rows = [
            ("unknown key", exchange(body={**PURCHASE, "pin": "1234"}), "('pin' was unexpected)"),
            ("unknown nested key", exchange(body={**PURCHASE, "pinData": {"pin": "1234"}}),
             "body: pinData: "),
            ("missing key", exchange(body={"code": "C"}), "'cardId' is a required property"),
            ("null", exchange(body={**PURCHASE, "amount": None}), "amount: None is not of type"),
            ("number for money", exchange(body={**PURCHASE, "amount": 25}), "amount: 25 is not of type"),
            ("two ways to pay", exchange(body={**PURCHASE, "secureCodeData": secure}),
             "must not be there together"),
            ("key twice", replaced(body='{"code":"A","code":"B"}'), "has the key \"code\" twice"),
            ("no JSON", replaced(body="{"), "body: is no JSON"),
            ("no object", replaced(body="[]"), "body: is no JSON object"),
            ("other content", exchange(headers={**TOKENS, "content-type": "text/plain"}),
             "header Content-Type: \"text/plain\" is not application/json"),
            ("one token", exchange(headers=no_token), "header x-session-token2: missing"),
            ("own header", exchange(headers={**TOKENS, "x-pin": "1"}), "header x-pin: not documented"),
            ("other path", exchange("/vello/refund/TALU"), "the path is not documented"),
            ("other base", exchange("/purchase/TALU"), "the path is not documented"),
            ("answer's key", exchange(answer={**PAID, "fee": "1"}), "('fee' was unexpected)"),
            ("answer's missing key", exchange(answer={"status": "SUCCESS"}), "'transactionId' is a"),
            ("answer's code", exchange(status=418), "status 418: not documented"),
            ("answer's type", exchange(content_type="text/html"), "answer 200: Content-Type: \"text/html\""),
            ("no body", replaced(answer=""), "answer 200: body: there is none"),
        ]
        for name, one, expected in rows:
            with self.subTest(name):
                found = complaints(DOCUMENT, one)
                self.assertTrue(any(expected in complaint for complaint in found), found)

    def test_is_counted_once_for_each_kind(self):
        check = contract.Check(CONTRACT)
        for amount in ("1,5", "2,5", "3,5"):
            check.add(exchange(body={**PURCHASE, "amount": amount}, place=amount))
        [(words, times, place)] = check.complaints.values()
        self.assertIn("body: amount: '1,5' does not match", words)
        self.assertEqual((times, place), (3, "1,5"))


class Answers(unittest.TestCase):
    def test_of_no_bytes_count_where_they_mean_something(self):
        poll = exchange("/vello/receipt/poll/TALU", {"transactionId": 7})
        self.assertEqual(complaints(DOCUMENT, dataclasses.replace(poll, answer="")), [])

    def test_that_a_fault_has_spoilt_are_not_judged(self):
        self.assertEqual(complaints(DOCUMENT, replaced(status=302, answer=None)), [])

    def test_on_purpose_wrong_are_exempt_and_an_exemption_needs_a_reason(self):
        lower = exchange(body={**PURCHASE, "code": "LOWER-CASE"}, answer={**PAID, "status": "success"})
        self.assertEqual(complaints(DOCUMENT, lower), [])
        rich = exchange("/vello/lookup/query/v2/TALU", {"qrValue": "RICH", "method": "inapp"},
                        {"message": ""})
        self.assertIn("nothing is wrong with it", complaints(DOCUMENT, rich)[0])


class Recordings(unittest.TestCase):
    def read(self, name, text):
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder) / name
            path.write_text(text, encoding="utf-8")
            return list(recordings.exchanges_of(path))

    def test_of_the_sandbox_and_of_a_proxy_say_the_same(self):
        body, answer = json.dumps(PURCHASE), json.dumps(PAID)
        line = {"method": "POST", "path": "/vello/purchase/TALU", "headers": {"X-Session-Token1": "a"},
                "body": body, "status": 200, "contentType": "application/json", "answer": answer}
        entry = {"request": {"method": "POST", "url": "https://bank.example/vello/purchase/TALU?",
                             "headers": [{"name": "X-Session-Token1", "value": "a"}],
                             "postData": {"text": body}},
                 "response": {"status": 200, "content": {"mimeType": "application/json", "text": answer}}}
        lines = self.read("a.jsonl", json.dumps(line) + '\n{"repeated":3}\n')
        archive = self.read("a.har", json.dumps({"log": {"entries": [entry]}}))
        self.assertEqual(lines[1], 3)
        lines[0].place = archive[0].place = ""
        self.assertEqual(lines[0], archive[0])

    def test_that_are_none_are_refused_with_their_place(self):
        for name, text, expected in [("a.jsonl", "{}\n", "a.jsonl:1: no recorded exchange"),
                                     ("a.jsonl", "hello\n", "is no JSON"),
                                     ("a.har", "{}", "no HTTP archive")]:
            with self.subTest(text), self.assertRaisesRegex(recordings.Unreadable, expected):
                self.read(name, text)


if __name__ == "__main__":
    unittest.main()
