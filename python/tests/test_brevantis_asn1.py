"""Messages of the tests' data, through the library and back."""

import base64
import json
import pathlib
import threading

import pytest

import brevantis_asn1 as asn1

DATA = pathlib.Path(__file__).resolve().parents[2] / "tests" / "data" / "derview"
EXTENSION = bytes.fromhex("300C0603551D1304053003 0101FF")


def samples():
    for path in sorted(DATA.glob("*.hex")):
        type = path.name.split("-")[0]
        for message in asn1.messages(path.read_bytes()):
            yield pytest.param(type, message.octets, id=path.stem)


@pytest.mark.parametrize("type, message", samples())
def test_what_is_der_comes_back(type, message):
    try:
        asn1.check(message, type, policy=0x4 | 0x8)
    except asn1.Asn1Error:
        pytest.skip("not DER")
    if asn1.to_der(message, type) != message:
        pytest.skip("comes back otherwise from a record")
    assert asn1.encode(type, asn1.decode(message, type)) == message


def test_values_are_plain():
    value = asn1.decode(EXTENSION, "Extension")
    assert value == {
        "extnID": {"oid": "2.5.29.19", "name": "id_ce_basicConstraints"},
        "extnValue": {"basicConstraints": {"cA": True}},
    }
    assert asn1.decode(memoryview(EXTENSION), "Extension") == value
    assert asn1.to_json(EXTENSION, "Extension", indented=True).startswith('{\n  "extnID"')


def test_written_by_hand():
    value = {"extnValue": {"keyUsage": ["digitalSignature"]}, "extnID": "id_ce_keyUsage"}
    assert asn1.encode("Extension", value).hex() == "300b0603551d0f040403020780"
    assert asn1.encode("CertificateSerialNumber", 1 << 63).hex() == "0209008000000000000000"
    assert asn1.encode("CertificateSerialNumber", str(1 << 64)).hex() == "0209010000000000000000"
    assert asn1.encode("DisplayText", {"utf8String": "\u0416\U0001f600"}).hex() == "0c06d096f09f9880"


def test_types():
    assert len(asn1.types()) >= 539
    assert "Certificate" in asn1.types()
    assert asn1.version().count(".") == 2


def test_elements():
    assert asn1.find(EXTENSION, "extnValue", "Extension") == (7, 7)
    assert asn1.find(EXTENSION, "", "Extension").length == len(EXTENSION)
    assert asn1.path_at(EXTENSION, 13, "Extension") == "extnValue.basicConstraints.cA"


def test_elements_behind_and_in_what_is_broken():
    broken = bytes.fromhex("3012 3009 0603551D13 04020100 3005 06012A 0400")
    with pytest.raises(asn1.Asn1Error):
        asn1.check(broken, "Extensions", policy=0x8)
    assert asn1.path_at(broken, 11, "Extensions") == "[0].extnValue"
    assert asn1.path_at(broken, 18, "Extensions") == "[1].extnValue"
    assert asn1.find(broken, "[1].extnValue", "Extensions") == (18, 2)


def test_what_a_callback_raises_comes_through(monkeypatch):
    def interrupt(*_arguments):
        raise KeyboardInterrupt

    monkeypatch.setattr(asn1._library.ctypes, "string_at", interrupt)
    with pytest.raises(KeyboardInterrupt):
        asn1.to_json(EXTENSION, "Extension")


def test_what_python_cannot_nest_is_refused():
    value = []
    for _ in range(5000):
        value = [value]
    with pytest.raises(asn1.Asn1Error, match="nest"):
        asn1.encode("GeneralNames", value)


def test_nothing_stands_behind_a_zero():
    with pytest.raises(ValueError, match="U.0000"):
        asn1.find(EXTENSION, "extnValue\0", "Extension")
    with pytest.raises(ValueError, match="U.0000"):
        asn1.check(EXTENSION, "Extension\0")


def test_failures_carry_place_and_path():
    with pytest.raises(asn1.Asn1Error) as caught:
        asn1.encode("Extension", {"extnID": "2.5.29.19", "extnValue": 5})
    error = caught.value
    assert (error.path, error.found, error.status) == ("extnValue", "a number", -18)
    assert error.offset > 0 and "expected" in str(error)
    with pytest.raises(asn1.Asn1Error) as caught:
        asn1.check(EXTENSION[:-1], "Extension")
    assert caught.value.offset != 0 and caught.value.name.startswith("ASN1S_")
    with pytest.raises(asn1.Asn1Error):
        asn1.find(EXTENSION, "critical", "Extension")
    with pytest.raises(ValueError, match="no type"):
        asn1.decode(EXTENSION, "Extensio")
    with pytest.raises(asn1.Asn1Error):
        asn1.encode("CertificateSerialNumber", 1.5)
    with pytest.raises(asn1.Asn1Error):
        asn1.encode("CertificateSerialNumber", float("nan"))


def test_types_of_a_schema():
    asn1.add_schema(DATA / "own.asn1")
    assert "Parcel" in asn1.types()
    parcel = {
        "number": 7,
        "size": "large",
        "shelf": {"place": {"row": 2, "column": 9}},
        "notes": [{"about": "id_greeting", "what": {"greeting": "gr\u00fc\u00dfe"}}],
    }
    octets = asn1.encode("Own.Parcel", parcel)
    assert octets.hex() == (
        "30210201070a0101a1083006020102020109310f300d06022a050c076772c3bcc39f65"
    )
    elsewhere = []
    thread = threading.Thread(target=lambda: elsewhere.append(asn1.decode(octets, "Parcel")))
    thread.start()
    thread.join()
    assert elsewhere == [asn1.decode(octets, "Parcel")]
    assert elsewhere[0]["notes"][0]["about"] == {"oid": "1.2.5", "name": "id_greeting"}
    with pytest.raises(asn1.Asn1Error) as caught:
        asn1.add_schema(wrong="Wrong DEFINITIONS ::= BEGIN A ::= Absent END")
    assert (caught.value.path, caught.value.status) == ("wrong:1:35", -18)
    assert str(caught.value).startswith("wrong:1:35: error: ")
    with pytest.raises(asn1.Asn1Error):
        asn1.add_schema()


def test_messages_of_an_input():
    text = "-----BEGIN A-----\nMAA=\n-----END A-----\n" * 2
    assert list(asn1.messages(text.encode())) == [(b"0\0", "A"), (b"0\0", "A")]
    assert list(asn1.messages(base64.b64encode(b"0\0"))) == [(b"0\0", "")]
    with pytest.raises(asn1.Asn1Error):
        list(asn1.messages(b"-----BEGIN A-----\n"))


def test_every_thread_has_its_handle():
    problems = []

    def work():
        for _ in range(200):
            try:
                asn1.encode("Extension", {"extnID": "2.5.29.19"})
            except asn1.Asn1Error as error:
                if "extnValue" not in error.expected:
                    problems.append(error)
            if asn1.encode("Extension", asn1.decode(EXTENSION, "Extension")) != EXTENSION:
                problems.append("another message")

    threads = [threading.Thread(target=work) for _ in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert not problems


def test_json_is_what_json_loads_takes():
    for name in ("Certificate-every-extension.hex", "ContentInfo-signed.hex"):
        message = next(asn1.messages((DATA / name).read_bytes())).octets
        text = asn1.to_json(message)
        assert asn1.from_json(name.split("-")[0], text) == asn1.to_der(message)
        assert json.loads(text) == asn1.decode(message)
