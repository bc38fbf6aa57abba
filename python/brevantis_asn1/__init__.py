"""Messages of public-key infrastructure as Python values.

Stands on the shared library libbrevantis_asn1_text, which is found by the environment variable
BREVANTIS_ASN1_LIBRARY, a path, or by the loader. Values have the form of the library's JSON: what
is an object there is a dict here. Every thread has a handle of its own.
"""

from __future__ import annotations

import json
import os
from typing import Any, Dict, Iterator, List, NamedTuple, Optional, Union

from . import _library
from ._library import Asn1Error, Handle, Octets, handle, library_version, too_deep

__all__ = [
    "Asn1Error",
    "Message",
    "Span",
    "Value",
    "add_schema",
    "check",
    "decode",
    "encode",
    "find",
    "from_json",
    "messages",
    "path_at",
    "recognise",
    "to_der",
    "to_json",
    "types",
    "version",
]

#: What a message comes to: a dict, a list, a str, an int, a bool or None.
Value = Union[Dict[str, Any], List[Any], str, int, bool, None]


class Span(NamedTuple):
    """Where an element is, header included."""

    offset: int
    length: int


class Message(NamedTuple):
    """A message of an input, and the label of its PEM block, empty without one."""

    octets: bytes
    label: str


def version() -> str:
    """Version of the library."""
    return library_version()


def types() -> List[str]:
    """Names of all types, sorted."""
    return handle().type_names()


def add_schema(*paths: Union[str, "os.PathLike[str]"], **texts: str) -> None:
    """Reads ASN.1 modules, which may import from each other: their types are known from now on.

    paths: of files of modules; texts: modules by the name that failures show
    Asn1Error tells where a module is wrong, a line each.
    """
    files = dict(texts)
    for path in paths:
        with open(path, encoding="utf-8", errors="replace") as file:
            files[os.fspath(path)] = file.read()
    _library.add_schema(files)


def recognise(octets: Octets, label: Optional[str] = None) -> str:
    """Name of the type that a message is; Asn1Error when it is none that is usual."""
    return handle().recognise(octets, label)


def decode(octets: Octets, type: Optional[str] = None, *, policy: int = 0) -> Value:
    """Decodes a message.

    type: its name; recognised where it is left out
    policy: how strictly it is read, of the TOLERATE_..., EXACT and DER bits of <brevantis/asn1.h>
    """
    text = to_json(octets, type, policy=policy)
    try:
        value: Value = json.loads(text)
        return value
    except RecursionError:
        raise too_deep() from None


def to_json(
    octets: Octets, type: Optional[str] = None, *, indented: bool = False, policy: int = 0
) -> str:
    """The JSON of a message."""
    used = handle()
    return used.to_json(octets, type or used.recognise(octets, None), indented, policy)


def encode(type: str, value: Value) -> bytes:
    """Encodes a value, as decode gives it or written by hand, in DER."""
    try:
        text = json.dumps(value, separators=(",", ":"))
    except RecursionError:
        raise too_deep() from None
    return from_json(type, text)


def from_json(type: str, text: str) -> bytes:
    """Encodes what a JSON text tells in DER."""
    return handle().from_json(type, text)


def to_der(octets: Octets, type: Optional[str] = None, *, policy: int = 0) -> bytes:
    """Decodes a message in BER and encodes it in DER."""
    used = handle()
    return used.to_der(octets, type or used.recognise(octets, None), policy)


def check(octets: Octets, type: Optional[str] = None, *, policy: int = 0) -> None:
    """Raises Asn1Error unless a message is in order, to its last octet."""
    used = handle()
    used.check(octets, type or used.recognise(octets, None), policy)


def find(octets: Octets, path: str, type: Optional[str] = None) -> Span:
    """Finds an element by its path, as "tbsCertificate.validity"."""
    used = handle()
    return Span(*used.find(octets, type or used.recognise(octets, None), path))


def path_at(octets: Octets, offset: int, type: Optional[str] = None) -> str:
    """The path of the innermost element that an octet belongs to."""
    used = handle()
    return used.path_at(octets, type or used.recognise(octets, None), offset)


def messages(octets: Octets) -> Iterator[Message]:
    """The messages of an input: DER, PEM, base64, hexadecimal digits or JSON of the viewer.

    Asn1Error is raised at a damaged one.
    """
    for found, label in Handle().messages(octets):
        yield Message(found, label)
