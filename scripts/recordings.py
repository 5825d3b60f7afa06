# SPDX-License-Identifier: Apache-2.0
"""Reads recorded exchanges with a wallet server, for check-contract."""
import dataclasses
import json
import urllib.parse


@dataclasses.dataclass
class Exchange:
    """A request, and its answer where there is one."""
    method: str
    path: str
    headers: dict  # Names in lower case.
    body: str
    status: int | None = None
    content_type: str = ""
    answer: str | None = None  # None: not known, or not to be judged.
    place: str = ""


class Unreadable(Exception):
    """A body that is no JSON object, or a recording that is none."""


def object_of(text):
    def pairs(found):
        names = [name for name, _ in found]
        twice = {name for name in names if names.count(name) > 1}
        if twice:
            raise Unreadable(f"has the key \"{twice.pop()}\" twice")
        return dict(found)

    def constant(name):
        raise Unreadable(f"has {name}, which is no JSON")

    try:
        value = json.loads(text, object_pairs_hook=pairs, parse_constant=constant)
    except ValueError as error:
        raise Unreadable(f"is no JSON: {error}") from None
    except RecursionError:
        raise Unreadable("is nested too deeply") from None
    if not isinstance(value, dict):
        raise Unreadable("is no JSON object")
    return value


def exchanges_of_lines(path):
    """A recording of orlix-sandbox or of the walks: one JSON object a line. Those that repeat a form
    that is there already are only counted; their number comes as an int."""
    text = path.read_text(encoding="utf-8", errors="replace")
    for number, line in enumerate(text.removesuffix("\n").split("\n") if text else [], 1):
        place = f"{path.name}:{number}"
        try:
            one = object_of(line)
            if "repeated" in one:
                yield int(one["repeated"])
                continue
            texts = [one["method"], one["path"], one["body"], *one["headers"].values()]
            if not all(isinstance(text, str) for text in texts):
                raise TypeError("method, path, headers and body are texts")
            yield Exchange(method=one["method"], path=one["path"],
                           headers={name.lower(): value for name, value in one["headers"].items()},
                           body=one["body"], status=one.get("status"),
                           content_type=one.get("contentType", ""),
                           answer=None if "spoilt" in one else one.get("answer"), place=place)
        except (Unreadable, KeyError, TypeError, AttributeError) as error:
            raise Unreadable(f"{place}: no recorded exchange: {error}") from None


def exchanges_of_har(path):
    """What a recording proxy or a browser saves (HTTP Archive 1.2)."""
    try:
        entries = json.loads(path.read_text(encoding="utf-8"))["log"]["entries"]
        for number, entry in enumerate(entries, 1):
            asked, answered = entry["request"], entry["response"]
            text = answered["content"].get("text", "")
            if answered["content"].get("encoding") == "base64":
                raise Unreadable(f"{path.name}: the answer of entry {number} is not saved as text")
            yield Exchange(method=asked["method"], path=urllib.parse.urlsplit(asked["url"]).path,
                           headers={one["name"].lower(): one["value"] for one in asked["headers"]},
                           body=asked.get("postData", {}).get("text", ""),
                           status=answered["status"] or None,
                           content_type=answered["content"].get("mimeType", ""), answer=text,
                           place=f"{path.name}: entry {number}")
    except (ValueError, KeyError, TypeError, AttributeError) as error:
        raise Unreadable(f"{path.name}: no HTTP archive: {error}") from None


def exchanges_of(path):
    return exchanges_of_har(path) if path.suffix == ".har" else exchanges_of_lines(path)
