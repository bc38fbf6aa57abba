#!/usr/bin/python3
"""The pages of --format html as text; what they do in a browser is page_test.py's.

Usage: page_text_test.py PROGRAM
"""

import base64
import hashlib
import pathlib
import re
import subprocess
import sys

PROGRAM = pathlib.Path(sys.argv[1]).resolve()
DATA = pathlib.Path(__file__).resolve().parent.parent / "data" / "derview"


def run(*options, message=b"", status=0):
    done = subprocess.run([PROGRAM, "--format", "html", *options], input=message, cwd=DATA,
                          capture_output=True, check=False)
    assert status is None or done.returncode == status, (options, done.returncode, done.stderr)
    return done.stdout.decode(), done.stderr.decode()


def of_length(tag, contents):
    """An element whose length takes four octets."""
    return bytes([tag, 0x84]) + len(contents).to_bytes(4, "big") + contents


def many(element, size):
    return of_length(0x30, element * (size // len(element)))


def page_holds_no_markup_of_messages():
    text = b"</script><script>alert(1)</script><!--"
    name = bytes([0x30, 11 + len(text), 0x31, 9 + len(text), 0x30, 7 + len(text), 6, 3, 0x55, 4, 3,
                  0x0C, len(text)]) + text
    page, _ = run("--type", "Name", "-", "Name-hostile.hex", message=name)
    blocks = page.partition("</noscript>")[2]
    assert blocks.count("<") == 4 + 2, "the end, two blocks of data, and nothing else that is markup"
    assert r"\u003c/script>\u003cscript>alert(1)" in blocks
    assert "\x1b" not in page


def policy_lets_in_the_style_and_the_script_only():
    page, _ = run("request.b64")
    digests = {}
    for name in "style", "script":
        text = re.search(f"<{name}[^>]*>(.*?)</{name}>", page, re.S)[1]
        digests[name] = base64.b64encode(hashlib.sha256(text.encode()).digest()).decode()
    assert ("content=\"default-src 'none'; style-src 'sha256-{style}'; script-src 'sha256-{script}'; "
            "base-uri 'none'; form-action 'none'\"").format(**digests) in page
    assert not re.search(r"\sstyle=|\son[a-z]+=|https?:|innerHTML|insertAdjacentHTML|\bsrc=", page)


def page_is_at_most_six_times_the_message():
    size = 5 << 20
    serial = 0x0ABBCCDD << 96
    entries = b"".join(bytes([0x30, 33, 2, 16]) + (serial + i).to_bytes(16, "big") +
                       b"\x17\x0d261121133306Z" for i in range(size // 35))
    lists = {
        "entries": (of_length(0x30, entries),
                    ["--type", "_SeqOfTBSCertList_revokedCertificates_element"]),
        "certificates": ((DATA / "Certificate-every-extension.hex").read_text().strip() * 2560,
                         ["--input", "hex"]),
        "numbers": (of_length(0x30, b"".join(
            bytes([2, 2, i >> 8 & 0x7F | 1, i & 255]) for i in range(size // 4))), []),
        "nothing": (many(b"\x05\x00", size), []),
    }
    for name, (message, options) in lists.items():
        message = message if isinstance(message, bytes) else message.encode()
        octets = len(message) // (2 if name == "certificates" else 1)
        page, _ = run(*options, message=message, status=None)
        print(f"{name}: {octets} octets, a page {len(page) / octets:.2f} times as long")
        assert len(page) <= 6 * octets


def large_messages_are_refused():
    limit = 16 << 20
    largest = of_length(4, bytes(limit - 6))
    page, _ = run(message=largest)
    assert len(page) > limit
    told = ("standard input: a page holds 16777216 octets at most, and with this message 16777217\n")
    assert run(message=of_length(4, bytes(limit - 5)), status=1) == ("", told)
    # One that fits is shown although others do not.
    page, told = run("-", "request.b64", message=of_length(4, bytes(limit)), status=1)
    assert page.count("application/json") == 2 and told.startswith("standard input: a page holds")


for test in (page_holds_no_markup_of_messages, policy_lets_in_the_style_and_the_script_only,
             page_is_at_most_six_times_the_message, large_messages_are_refused):
    test()
print("all as expected")
