#!/usr/bin/python3
"""Clicks through the page that derview writes, in headless Chromium, and takes pictures of it.

Usage: page_test.py DERVIEW MESSAGES-FOLDER [PICTURES-FOLDER]

Skipped, with the status 77, where Chromium, its driver or Selenium are missing.
"""
import pathlib
import subprocess
import sys
import tempfile
import time

try:
    from selenium import webdriver
    from selenium.webdriver.chrome.service import Service
    from selenium.webdriver.common.by import By
    from selenium.webdriver.common.keys import Keys
except ImportError:
    print("skipped: python3-selenium is missing")
    sys.exit(77)
import shutil

CHROMIUM, DRIVER = shutil.which("chromium"), shutil.which("chromedriver")
if not CHROMIUM or not DRIVER:
    print("skipped: chromium or chromium-driver is missing")
    sys.exit(77)

derview, messages = sys.argv[1], pathlib.Path(sys.argv[2])
pictures = pathlib.Path(sys.argv[3]) if len(sys.argv) > 3 else None
work = pathlib.Path(tempfile.mkdtemp())


def page_of(name, *files, octets=None):
    page = work / (name + ".html")
    result = subprocess.run([derview, "--format", "html", *map(str, files)], input=octets,
                            stdout=subprocess.PIPE, check=False)
    page.write_bytes(result.stdout)
    return page


def element(tag, *contents):
    octets = b"".join(contents)
    size = len(octets)
    length = bytes([size]) if size < 128 else b"\x84" + size.to_bytes(4, "big")
    return bytes([tag]) + length + octets


def large_list(entries):
    """A revocation list, not signed by anybody."""
    algorithm = element(0x30, bytes.fromhex("06092a864886f70d01010b"), b"\x05\x00")
    name = element(0x30, element(0x31, element(0x30, b"\x06\x03\x55\x04\x03", element(0x0C, b"CA"))))
    reason = element(0x30, element(0x30, b"\x06\x03\x55\x1d\x15", element(0x04, b"\x0a\x01\x01")))
    revoked = element(0x30, *(element(0x30, element(2, b"\x01" + (i * 2654435761).to_bytes(15, "big")),
                                      element(0x17, b"260101000000Z"), reason)
                              for i in range(entries)))
    times = element(0x17, b"260101000000Z") + element(0x17, b"270101000000Z")
    content = element(0x30, b"\x02\x01\x01", algorithm, name, times, revoked)
    return element(0x30, content, algorithm, element(3, b"\0" * 257))


def expect(condition, what):
    if not condition:
        raise AssertionError(what)


class Page:
    def __init__(self, theme="light"):
        options = webdriver.ChromeOptions()
        options.binary_location = CHROMIUM
        for argument in ("--headless=new", "--no-sandbox", "--disable-gpu", "--window-size=1400,900",
                         "--user-data-dir=" + tempfile.mkdtemp(dir=work)):
            options.add_argument(argument)
        if theme == "dark":
            options.add_argument("--force-dark-mode")
        options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
        self.browser = webdriver.Chrome(service=Service(DRIVER), options=options)

    def open(self, page):
        self.browser.get(page.as_uri())

    def find(self, css):
        return self.browser.find_element(By.CSS_SELECTOR, css)

    def all(self, css):
        return self.browser.find_elements(By.CSS_SELECTOR, css)

    def status(self):
        return self.find("#status").text

    def selected(self):
        return self.find(".row[aria-selected='true']")

    def row(self, name):
        return next(row for row in self.all(".row") if name in row.text and row.is_displayed())

    def picture(self, name):
        if pictures:
            pictures.mkdir(parents=True, exist_ok=True)
            self.browser.save_screenshot(str(pictures / (name + ".png")))

    def check_log(self):
        bad = [entry["message"] for entry in self.browser.get_log("browser")
               if entry["level"] == "SEVERE"]
        expect(not bad, "the browser complains: " + "; ".join(bad))


def test_certificate(page):
    page.open(page_of("certificate", messages / "Certificate-every-extension.hex"))
    page.check_log()
    expect(page.find("h1").text.startswith("Certificate") is False and
           "Certificate, 2045 octets" in page.find("h1").text, "the heading tells the message")
    page.row("serialNumber").click()
    expect("tbsCertificate.serialNumber at offset" in page.status(), "a click tells the path")
    marked = page.all("#rows .in:not(.head)")
    header = page.all("#rows .in.head")
    expect(len(header) == 2 * 2 and len(marked) == 2 * 20, "the octets of the element are marked")
    # The other way.
    octet = page.find("#rows span[data-at='60']")
    octet.click()
    offset = int(page.selected().find_element(By.CLASS_NAME, "offset").text)
    expect(offset <= 60 and "at offset" in page.status(), "an octet leads to its element")
    # Keys.
    page.row("serialNumber").click()
    page.selected().send_keys(Keys.ARROW_DOWN)
    expect("signature" in page.selected().text, "down goes to the next row")
    page.selected().send_keys(Keys.ARROW_RIGHT)
    expect(page.selected().get_attribute("aria-expanded") == "true", "right unfolds")
    page.selected().send_keys(Keys.ARROW_LEFT)
    expect(page.selected().get_attribute("aria-expanded") == "false", "left folds")
    # Search.
    page.find("body").send_keys("/")
    search = page.find("#search")
    search.send_keys("https://example.com/path", Keys.ENTER)
    expect("example.com/path" in page.selected().text, "search reveals what is folded")
    search.clear()
    search.send_keys("nothing of this kind", Keys.ENTER)
    expect("nothing found" in page.status(), "search tells when there is nothing")
    # Themes.
    page.row("serialNumber").click()
    back = page.find("body").value_of_css_property("background-color")
    page.picture("certificate-light")
    page.find("#theme").click()
    expect(page.find("body").value_of_css_property("background-color") != back, "there are two themes")
    page.picture("certificate-dark")
    page.check_log()


def test_hostile(page):
    script = b"<script>document.title='owned'</script><img src=x onerror=\"document.title='owned'\">"
    page.open(page_of("hostile", octets=element(0x30, element(0x0C, script), b"\x05\x01")))
    time.sleep(0.3)
    expect("owned" not in page.browser.title, "nothing of a message is run")
    expect(any("<script>" in row.text for row in page.all(".row")), "it is shown as text")
    expect(not page.all("#tree img") and not page.all("#tree script"), "nothing of it is an element")
    page.check_log()


def test_damaged(page):
    hexadecimal = (messages / "Certificate-odd-text.hex").read_text().replace("\n", "")
    page.open(page_of("damaged", octets=bytes.fromhex(hexadecimal[:200]) + b"\x05" +
                      bytes.fromhex(hexadecimal[202:])))
    expect(page.all(".b"), "what is wrong stands in the tree")
    page.picture("damaged")


def test_several(page):
    page.open(page_of("several", messages / "bundle.pem"))
    choice = page.find("#which")
    expect(len(choice.find_elements(By.TAG_NAME, "option")) == 3, "each message can be chosen")
    choice.send_keys("message 2")
    expect("bundle.pem#3" in page.find("h1").text, "another message is shown")


def test_large(page):
    message = large_list(100000)
    file = page_of("large", octets=message)
    ratio = file.stat().st_size / len(message)
    start = time.monotonic()
    page.open(file)
    page.row("revokedCertificates").click()
    took = time.monotonic() - start
    print(f"{len(message)} octets: the page is {ratio:.1f} times as large, usable in {took:.1f} s")
    expect(ratio <= 6, "a page is at most six times the message")
    page.find("#search").send_keys("reasonCode", Keys.ENTER)
    expect("reasonCode" in page.selected().text, "a large message can be searched")
    page.picture("large")


def test_bound():
    result = subprocess.run([derview, "--format", "html"], input=element(0x04, bytes((16 << 20) + 1)),
                            stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False)
    expect(result.returncode == 1 and b"at most 16777216 octets" in result.stderr,
           "a message above the bound is refused")


test_bound()
browser = Page()
try:
    for test in (test_certificate, test_hostile, test_damaged, test_several, test_large):
        test(browser)
        print(test.__name__ + ": as expected")
finally:
    browser.browser.quit()
    shutil.rmtree(work, ignore_errors=True)
