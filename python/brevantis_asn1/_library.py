"""The functions of <brevantis/asn1.h>, by ctypes."""

from __future__ import annotations

import ctypes
import functools
import itertools
import os
import threading
from ctypes import POINTER, byref, c_char_p, c_int, c_size_t, c_uint, c_void_p
from typing import Dict, Iterator, List, Optional, Tuple, Union

Octets = Union[bytes, bytearray, memoryview]

_NOT_SUPPORTED = -99  # BASN1_NOT_SUPPORTED
_WRITE = ctypes.CFUNCTYPE(c_int, c_void_p, c_void_p, c_size_t)


class _SchemaText(ctypes.Structure):
    _fields_ = [("name", c_char_p), ("text", c_char_p), ("size", c_size_t)]


_FUNCTIONS = {
    "basn1_version": (c_char_p, []),
    "basn1_status_name": (c_char_p, [c_int]),
    "basn1_open": (c_int, [POINTER(c_void_p)]),
    "basn1_close": (None, [c_void_p]),
    "basn1_set_policy": (c_int, [c_void_p, c_uint]),
    "basn1_find_type": (c_void_p, [c_char_p]),
    "basn1_type_at": (c_void_p, [c_size_t]),
    "basn1_type_name": (c_char_p, [c_void_p]),
    "basn1_add_schema": (c_int, [c_void_p, POINTER(_SchemaText), c_size_t]),
    "basn1_schema_type": (c_void_p, [c_void_p, c_char_p]),
    "basn1_schema_type_at": (c_void_p, [c_void_p, c_size_t]),
    "basn1_recognise": (c_int, [c_void_p, c_char_p, c_size_t, c_char_p, POINTER(c_void_p)]),
    "basn1_check": (c_int, [c_void_p, c_void_p, c_char_p, c_size_t]),
    "basn1_to_der": (
        c_int,
        [c_void_p, c_void_p, c_char_p, c_size_t, POINTER(c_void_p), POINTER(c_size_t)],
    ),
    "basn1_to_json": (c_int, [c_void_p, c_void_p, c_char_p, c_size_t, c_int, _WRITE, c_void_p]),
    "basn1_from_json": (
        c_int,
        [c_void_p, c_void_p, c_char_p, c_size_t, POINTER(c_void_p), POINTER(c_size_t)],
    ),
    "basn1_find": (
        c_int,
        [c_void_p, c_void_p, c_char_p, c_size_t, c_char_p, POINTER(c_size_t), POINTER(c_size_t)],
    ),
    "basn1_path_at": (
        c_int,
        [c_void_p, c_void_p, c_char_p, c_size_t, c_size_t, POINTER(c_char_p)],
    ),
    "basn1_messages_open": (c_int, [c_void_p, c_char_p, c_size_t, POINTER(c_void_p)]),
    "basn1_messages_next": (
        c_int,
        [c_void_p, POINTER(c_void_p), POINTER(c_size_t), POINTER(c_char_p)],
    ),
    "basn1_messages_close": (None, [c_void_p]),
    "basn1_failure_text": (c_char_p, [c_void_p, c_int]),
    "basn1_failure_offset": (c_size_t, [c_void_p]),
    "basn1_free": (None, [c_void_p]),
}


@functools.lru_cache(maxsize=None)
def _library() -> ctypes.CDLL:
    library = ctypes.CDLL(
        os.environ.get("BREVANTIS_ASN1_LIBRARY") or "libbrevantis_asn1_text.so.1"
    )
    for name, (result, arguments) in _FUNCTIONS.items():
        function = getattr(library, name)
        function.restype = result
        function.argtypes = arguments
    return library


class Asn1Error(ValueError):
    """Why a message, or a value, is refused.

    status: negative; name: of the status; offset: in the message or the JSON text; path: of the
    element; expected and found: in English.
    """

    def __init__(
        self, whole: str, status: int, name: str, offset: int, path: str, expected: str, found: str
    ) -> None:
        super().__init__(whole)
        self.status = status
        self.name = name
        self.offset = offset
        self.path = path
        self.expected = expected
        self.found = found


def too_deep() -> Asn1Error:
    """What Python's json makes a RecursionError."""
    expected, found = "a value that Python can nest", "a deeper one"
    whole = "expected " + expected + ", found " + found
    return Asn1Error(whole, _NOT_SUPPORTED, "ASN1S_NOT_SUPPORTED", 0, "", expected, found)


def library_version() -> str:
    version: bytes = _library().basn1_version()
    return version.decode()


@functools.lru_cache(maxsize=None)
def _types() -> Dict[str, int]:
    library = _library()
    found: Dict[str, int] = {}
    while True:
        pointer = library.basn1_type_at(len(found))
        if pointer is None:
            return found
        found[library.basn1_type_name(pointer).decode()] = pointer


def _terminated(text: str) -> bytes:
    """A text for C, where nothing may stand behind U+0000."""
    if "\0" in text:
        raise ValueError("U+0000 in " + repr(text))
    return text.encode("utf-8")


def _octets(octets: Octets) -> bytes:
    return octets if isinstance(octets, bytes) else bytes(octets)


class Handle:
    """One basn1_handle, for one thread."""

    def __init__(self) -> None:
        self._library = _library()
        self._handle = c_void_p()
        self._policy = 0
        self._types = _types()
        self.schemas = 0
        if self._library.basn1_open(byref(self._handle)) != 0:
            raise MemoryError

    def __del__(self) -> None:
        if getattr(self, "_handle", None):
            self._library.basn1_close(self._handle)

    def _require(self, status: int) -> None:
        if status == 0:
            return
        name = self._library.basn1_status_name(status).decode()
        path, expected, found, whole = (
            self._library.basn1_failure_text(self._handle, part).decode("utf-8", "replace")
            for part in range(4)
        )
        offset = self._library.basn1_failure_offset(self._handle)
        raise Asn1Error(whole, status, name, offset, path, expected, found)

    def add_schema(self, texts: Dict[str, str]) -> None:
        coded = [(_terminated(name), text.encode("utf-8")) for name, text in texts.items()]
        files = (_SchemaText * len(coded))(*(_SchemaText(name, text, len(text)) for name, text in coded))
        self._require(self._library.basn1_add_schema(self._handle, files, len(coded)))
        self.schemas += 1
        self._types = dict(_types())
        for index in itertools.count():
            pointer = self._library.basn1_schema_type_at(self._handle, index)
            if pointer is None:
                break
            self._types[self._library.basn1_type_name(pointer).decode()] = pointer

    def type_names(self) -> List[str]:
        return sorted(self._types)

    def _type(self, name: str) -> int:
        pointer = self._types.get(name)
        if pointer is None:
            pointer = self._library.basn1_schema_type(self._handle, _terminated(name))
        if pointer is None:
            raise ValueError("there is no type " + repr(name))
        return pointer

    def _set_policy(self, policy: int) -> None:
        if policy != self._policy:
            self._require(self._library.basn1_set_policy(self._handle, policy))
            self._policy = policy

    def recognise(self, octets: Octets, label: Optional[str]) -> str:
        message = _octets(octets)
        found = c_void_p()
        self._require(
            self._library.basn1_recognise(
                self._handle,
                message,
                len(message),
                _terminated(label) if label is not None else None,
                byref(found),
            )
        )
        name: bytes = self._library.basn1_type_name(found)
        return name.decode()

    def check(self, octets: Octets, type: str, policy: int) -> None:
        message = _octets(octets)
        self._set_policy(policy)
        self._require(
            self._library.basn1_check(self._handle, self._type(type), message, len(message))
        )

    def to_json(self, octets: Octets, type: str, indented: bool, policy: int) -> str:
        message = _octets(octets)
        self._set_policy(policy)
        pieces: List[bytes] = []
        raised: List[BaseException] = []

        def write(_user: Optional[int], text: int, size: int) -> int:
            # ctypes prints what is raised here, KeyboardInterrupt too, and goes on.
            try:
                pieces.append(ctypes.string_at(text, size))
            except BaseException as error:
                raised.append(error)
            return len(raised)

        status = self._library.basn1_to_json(
            self._handle, self._type(type), message, len(message), indented, _WRITE(write), None
        )
        if raised:
            raise raised[0]
        self._require(status)
        return b"".join(pieces).decode("ascii")

    def _take(self, octets: c_void_p, size: c_size_t) -> bytes:
        try:
            return ctypes.string_at(octets.value or 0, size.value)
        finally:
            self._library.basn1_free(octets)

    def from_json(self, type: str, text: str) -> bytes:
        coded = text.encode("utf-8")
        octets, size = c_void_p(), c_size_t()
        self._require(
            self._library.basn1_from_json(
                self._handle, self._type(type), coded, len(coded), byref(octets), byref(size)
            )
        )
        return self._take(octets, size)

    def to_der(self, octets: Octets, type: str, policy: int) -> bytes:
        message = _octets(octets)
        self._set_policy(policy)
        der, size = c_void_p(), c_size_t()
        self._require(
            self._library.basn1_to_der(
                self._handle, self._type(type), message, len(message), byref(der), byref(size)
            )
        )
        return self._take(der, size)

    def find(self, octets: Octets, type: str, path: str) -> Tuple[int, int]:
        message = _octets(octets)
        offset, length = c_size_t(), c_size_t()
        self._require(
            self._library.basn1_find(
                self._handle,
                self._type(type),
                message,
                len(message),
                _terminated(path),
                byref(offset),
                byref(length),
            )
        )
        return offset.value, length.value

    def path_at(self, octets: Octets, type: str, offset: int) -> str:
        message = _octets(octets)
        path = c_char_p()
        self._require(
            self._library.basn1_path_at(
                self._handle, self._type(type), message, len(message), offset, byref(path)
            )
        )
        return (path.value or b"").decode()

    def messages(self, octets: Octets) -> Iterator[Tuple[bytes, str]]:
        """To be called on a handle of its own, which lives as long as the iteration."""
        data = _octets(octets)
        opened = c_void_p()
        self._require(
            self._library.basn1_messages_open(self._handle, data, len(data), byref(opened))
        )
        try:
            while True:
                message, size, label = c_void_p(), c_size_t(), c_char_p()
                self._require(
                    self._library.basn1_messages_next(
                        opened, byref(message), byref(size), byref(label)
                    )
                )
                if not message.value:
                    return
                found = ctypes.string_at(message.value, size.value)
                yield found, (label.value or b"").decode("utf-8", "replace")
        finally:
            self._library.basn1_messages_close(opened)


_local = threading.local()
_lock = threading.Lock()
_schemas: List[Dict[str, str]] = []


def handle() -> Handle:
    """The handle of this thread, with all schemas that were added."""
    used = getattr(_local, "handle", None)
    if used is None:
        used = _local.handle = Handle()
    while used.schemas < len(_schemas):
        used.add_schema(_schemas[used.schemas])
    return used


def add_schema(texts: Dict[str, str]) -> None:
    with _lock:
        handle().add_schema(texts)
        _schemas.append(texts)
