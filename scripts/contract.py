# SPDX-License-Identifier: Apache-2.0
"""Holds recorded exchanges against docs/protocol/openapi.yaml, for check-contract."""
import collections
import pathlib
import re
import urllib.parse

import jsonschema
import yaml

from recordings import Unreadable, object_of

ROOT = pathlib.Path(__file__).resolve().parent.parent
DOCUMENT = ROOT / "docs" / "protocol" / "openapi.yaml"
METHODS = ("get", "put", "post", "delete", "options", "head", "patch", "trace")
FORM = "application/x-www-form-urlencoded"

# Answers by which orlix-sandbox departs from the protocol on purpose, so that clients can be tried
# against them: the name, the path, and what the bodies of request and answer say then. Beside them only
# answers that a fault has spoilt are exempt. The rows are described in sandbox/README.md.
EXEMPT = [
    ("code LOWER-CASE: the status in lower case", "/purchase/{node}",
     lambda asked, answered: asked.get("code") == "LOWER-CASE" and answered.get("status") == "success"),
    ("code EMPTY-ANSWER: no body", "/purchase/{node}",
     lambda asked, answered: asked.get("code") == "EMPTY-ANSWER" and answered == {}),
    ("code RICH: texts under a number key and a boolean key", "/lookup/query/v2/{node}",
     lambda asked, answered: asked.get("qrValue") == "RICH"),
    ("card 4100011000000111: the status PENDING", "/card/link/{node}",
     lambda asked, answered: str(asked.get("cardNumber")).startswith("410001100")),
]

# Fields that a server may send or a client may understand, and that neither the library nor orlix-sandbox
# sends. Every other field of the document must occur in the recordings of a test run.
NEVER_SENT = {
    "Automator.status", "DelinkAnswer.receipt", "LinkAnswer.receipt", "LookupAnswer.URLResponse",
    "PurchaseRequest.tipAmount",
}

# The issuer's pages, which a sandbox has to serve too, are no part of the wallet server.
OTHERS = re.compile(r"^/issuer/")


def form_of(text):
    """The fields of a posted form; a recording of orlix-sandbox has them as a JSON object."""
    if text.startswith("{"):
        return object_of(text)
    return dict(urllib.parse.parse_qsl(text, keep_blank_values=True))


class Fault(str):
    """What is wrong with a field, in words. Two faults of one kind differ in the value only."""
    kind = ""


def words(error):
    """What jsonschema found: which field, and what is wrong with it."""
    kind = "/".join(map(str, error.absolute_schema_path))
    while error.context:
        error = jsonschema.exceptions.best_match(error.context)
    where = "".join(f"[{step}]" if isinstance(step, int) else f".{step}" for step in error.path)
    what = error.message if len(error.message) < 200 else error.message[:200] + "..."
    if error.validator is None:
        what = "must not be there together with the others"
    fault = Fault(f"{where.lstrip('.')}: {what}" if where else what)
    fault.kind = re.sub(r"\[\d+\]", "[]", where) + kind
    return fault


def within(place, fault):
    out = Fault(f"{place}: {fault}")
    out.kind = getattr(fault, "kind", fault)
    return out


class Operation:
    def __init__(self, contract, template, method, item):
        path = contract.paths[template]
        self.template = template
        self.method = method.upper()
        self.item = item
        self.name = f"{self.method} {template}"
        servers = item.get("servers") or path.get("servers") or contract.document["servers"]
        base = urllib.parse.urlsplit(servers[0]["url"].replace("{host}", "host")).path.rstrip("/")
        names = re.sub(r"\\\{(\w+)\\\}", r"(?P<\1>[^/]+)", re.escape(base + template))
        self.pattern = re.compile(names + "$")
        self.parameters = [contract.resolved(one)
                           for one in path.get("parameters", []) + item.get("parameters", [])]


def references(node):
    if isinstance(node, dict):
        yield from [node["$ref"]] if "$ref" in node else []
        node = list(node.values())
    for inner in node if isinstance(node, list) else []:
        yield from references(inner)


class Contract:
    """The protocol as the document describes it."""

    def __init__(self, document):
        self.document = document
        for name, schema in document["components"]["schemas"].items():
            try:
                jsonschema.Draft202012Validator.check_schema(schema)
            except jsonschema.SchemaError as error:
                raise Unreadable(f"components.schemas.{name}: {words(error)}") from None
        self.paths = document["paths"]
        self.resolver = jsonschema.RefResolver("", document)
        for reference in set(references(document)):
            try:
                self.resolver.resolve(reference)
            except jsonschema.RefResolutionError as error:
                raise Unreadable(f"$ref {reference}: {error}") from None
        self.known = {}
        self.fields_seen = set()
        self.operations = [Operation(self, template, method, item)
                           for template, path in self.paths.items()
                           for method, item in path.items() if method in METHODS]

    @classmethod
    def load(cls, path=DOCUMENT):
        try:
            return cls(yaml.safe_load(pathlib.Path(path).read_text(encoding="utf-8")))
        except (yaml.YAMLError, KeyError, TypeError, AttributeError) as error:
            raise Unreadable(f"{path}: no OpenAPI description: {error}") from None

    def resolved(self, node):
        while "$ref" in node:
            node = self.resolver.resolve(node["$ref"])[1]
        return node

    def faults_of(self, schema, value):
        """What is wrong with the value, in words."""
        key = id(schema), repr(value)
        if key not in self.known:
            validator = jsonschema.Draft202012Validator(schema, resolver=self.resolver)
            self.known[key] = [words(error) for error in validator.iter_errors(value)]
        return self.known[key]

    def fields(self):
        """Every "Schema.field" of the document."""
        for name, schema in self.document["components"]["schemas"].items():
            for field in schema.get("properties", {}):
                yield f"{name}.{field}"

    def fields_in(self, schema, value):
        """Those that occur in a value."""
        name = schema.get("$ref", "").rpartition("/")[2]
        schema = self.resolved(schema)
        if isinstance(value, list):
            for element in value:
                yield from self.fields_in(schema.get("items", {}), element)
        elif isinstance(value, dict):
            for field, inner in schema.get("properties", {}).items():
                if field in value:
                    yield f"{name}.{field}"
                    yield from self.fields_in(inner, value[field])

    def operation_of(self, exchange):
        """The operation and the parameters in the path, or why there is none."""
        others = []
        for operation in self.operations:
            found = operation.pattern.match(exchange.path)
            if found and operation.method == exchange.method:
                return operation, found.groupdict()
            others += [operation.method] if found else []
        if others:
            return None, f"the path takes {' and '.join(others)} only"
        return None, "the path is not documented"

    def faults_of_request(self, exchange, operation, values):
        for parameter in operation.parameters:
            for fault in self.faults_of(parameter["schema"], values.get(parameter["name"])):
                yield within(f"path: {parameter['name']}", fault)
        yield from self.faults_of_headers(exchange, operation)
        wanted = operation.item.get("requestBody")
        if wanted is None:
            if exchange.body:
                yield "body: there must be none"
            return
        contents = self.resolved(wanted)["content"]
        kind = exchange.headers.get("content-type", "").split(";")[0].strip()
        if kind not in contents:
            yield f"header Content-Type: \"{kind}\" is not {' or '.join(contents)}"
            return
        try:
            value = form_of(exchange.body) if kind == FORM else object_of(exchange.body)
        except Unreadable as error:
            yield f"body: {error}"
            return
        yield from self.faults_of_body(contents[kind]["schema"], value)

    def faults_of_body(self, schema, value):
        self.fields_seen.update(self.fields_in(schema, value))
        for fault in self.faults_of(schema, value):
            yield within("body", fault)

    def faults_of_headers(self, exchange, operation):
        schemes = self.document["components"]["securitySchemes"]
        headers = {name: scheme["name"].lower() for name, scheme in schemes.items()}
        sent = {name for name, header in headers.items() if exchange.headers.get(header)}
        allowed = [set(one) for one in operation.item.get("security", self.document["security"])]
        if not allowed:
            allowed = [set()]
        if not any(needed <= sent for needed in allowed):
            missing = min((needed - sent for needed in allowed), key=len)
            yield f"header {' and '.join(sorted(headers[name] for name in missing))}: missing"
        elif not any(sent <= one for one in allowed):
            yield f"header {' and '.join(sorted(headers[name] for name in sent))}: does not belong here"
        for name in exchange.headers:
            if name.startswith("x-") and name not in headers.values():
                yield f"header {name}: not documented"

    def faults_of_answer(self, exchange, operation):
        answers = operation.item["responses"]
        answer = answers.get(str(exchange.status)) or answers.get(f"{exchange.status // 100}XX")
        if answer is None:
            yield f"status {exchange.status}: not documented"
            return
        answer = self.resolved(answer)
        if not exchange.answer and "x-empty-body" in answer:
            return
        kind = exchange.content_type.split(";")[0].strip()
        yield from self.faults_of_content(answer.get("content", {}), kind, exchange.answer)

    def faults_of_content(self, contents, kind, text):
        if kind not in contents:
            yield f"Content-Type: \"{kind}\" is not {' or '.join(contents)}"
            return
        try:
            value = object_of(text) if kind == "application/json" else text
        except Unreadable as error:
            yield f"body: {error}" if text else "body: there is none"
            return
        yield from self.faults_of_body(contents[kind]["schema"], value)

    def faults_of_refusal(self, exchange):
        """Of an answer to what no operation describes."""
        if exchange.status not in (404, 405):
            yield "a request that is not documented is answered 404 or 405"
            return
        refusal = {"application/json": {"schema": self.document["components"]["schemas"]["Error"]}}
        yield from self.faults_of_content(refusal, exchange.content_type.split(";")[0],
                                          exchange.answer)

    def faults_of_itself(self):
        """Examples that do not fit their schema."""
        for place, content in self.contents():
            examples = {name: one["value"] for name, one in content.get("examples", {}).items()}
            if "example" in content:
                examples["example"] = content["example"]
            for name, value in examples.items():
                for fault in self.faults_of(content["schema"], value):
                    yield f"{place}: {name}: {fault}"

    def contents(self):
        for operation in self.operations:
            bodies = {"request": operation.item.get("requestBody", {})}
            bodies.update({f"answer {status}": answer
                           for status, answer in operation.item["responses"].items()})
            for body, described in bodies.items():
                for content in self.resolved(described).get("content", {}).values():
                    yield f"{operation.name}: {body}", content


def exempt(exchange, operation):
    """The name by which an answer is exempt, or None."""
    def lenient(text):
        try:
            return object_of(text)
        except Unreadable:
            return {}
    for name, template, holds in EXEMPT:
        if template == operation.template and holds(lenient(exchange.body), lenient(exchange.answer)):
            return name
    return None


class Check:
    """Goes through exchanges and counts what it finds."""

    def __init__(self, contract):
        self.contract = contract
        self.requests = 0
        self.repeated = 0
        self.answers = 0
        self.spoilt = 0
        self.exempt = collections.Counter()
        self.seen = set()
        self.complaints = {}  # By kind: the words for the first, how many there are, where it was.

    def complain(self, exchange, side, fault):
        kind = exchange.method, exchange.path, side, getattr(fault, "kind", fault)
        entry = self.complaints.setdefault(
            kind, [f"{exchange.method} {exchange.path}: {side}: {fault}", 0, exchange.place])
        entry[1] += 1

    def add(self, exchange, judge_request=True):
        if OTHERS.match(exchange.path):
            return
        operation, values = self.contract.operation_of(exchange)
        if operation is not None:
            self.seen.add(operation.name)
        faults = [values] if operation is None else list(
            self.contract.faults_of_request(exchange, operation, values))
        if judge_request:
            self.requests += 1
            for fault in faults:
                self.complain(exchange, "request", fault)
        if exchange.status is not None:
            self.add_answer(exchange, operation)

    def add_answer(self, exchange, operation):
        if exchange.answer is None:
            self.spoilt += 1
            return
        name = exempt(exchange, operation) if operation else None
        faults = list(self.contract.faults_of_refusal(exchange) if operation is None
                      else self.contract.faults_of_answer(exchange, operation))
        if name and not faults:
            faults = [f"exempt as \"{name}\", but nothing is wrong with it"]
        elif name:
            self.exempt[name] += 1
            return
        self.answers += 1
        for fault in faults:
            self.complain(exchange, f"answer {exchange.status}", fault)

    def never_seen(self):
        """Operations and fields of the document that did not occur."""
        yield from (one.name for one in self.contract.operations if one.name not in self.seen)
        yield from sorted(set(self.contract.fields()) - self.contract.fields_seen - NEVER_SENT)
