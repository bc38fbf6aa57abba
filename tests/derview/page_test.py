#!/usr/bin/python3
"""The pages of --format html in Chromium: clicks, keys, search, both themes.

Usage: page_test.py PROGRAM [FOLDER]     (screenshots go to FOLDER)

Skipped, with the status 77, where Chromium, its driver or Selenium are missing.
"""

import pathlib
import shutil
import subprocess
import sys
import tempfile
import time

try:
    from selenium import webdriver
    from selenium.webdriver.chrome.service import Service
    from selenium.webdriver.common.action_chains import ActionChains
    from selenium.webdriver.common.by import By
    from selenium.webdriver.common.keys import Keys
except ImportError:
    print("skipped: python3-selenium is missing")
    sys.exit(77)

PROGRAM = pathlib.Path(sys.argv[1]).resolve()
WORK = None if len(sys.argv) > 2 else tempfile.TemporaryDirectory()
FOLDER = pathlib.Path(WORK.name if WORK else sys.argv[2]).resolve()
DATA = pathlib.Path(__file__).resolve().parent.parent / "data" / "derview"

# The least contrast of WCAG 2.1, 1.4.3, of each text with what is behind it.
CONTRAST = """
const canvas = new OffscreenCanvas(1, 1).getContext('2d', { willReadFrequently: true });
const channels = (color) => {
  canvas.clearRect(0, 0, 1, 1);
  canvas.fillStyle = color;
  canvas.fillRect(0, 0, 1, 1);
  return [...canvas.getImageData(0, 0, 1, 1).data];
};
const light = (color) => {
  const [red, green, blue] = channels(color).map((value) => value / 255)
    .map((value) => (value <= 0.03928 ? value / 12.92 : ((value + 0.055) / 1.055) ** 2.4));
  return 0.2126 * red + 0.7152 * green + 0.0722 * blue;
};
const back = (element) => {
  const color = getComputedStyle(element).backgroundColor;
  return channels(color)[3] === 255 || !element.parentElement ? color : back(element.parentElement);
};
let least = [21, ''];
for (const element of document.querySelectorAll('body *')) {
  const hasText = [...element.childNodes].some((node) => node.nodeType === 3 && node.data.trim());
  if (hasText && element.checkVisibility()) {
    const of = [light(getComputedStyle(element).color), light(back(element))].sort((a, b) => b - a);
    const ratio = (of[0] + 0.05) / (of[1] + 0.05);
    least = ratio < least[0] ? [ratio, element.className || element.id] : least;
  }
}
return least;
"""


class Page:
    """A page in the browser."""

    def __init__(self, driver, name, *options, message=b""):
        self.driver = driver
        done = subprocess.run([PROGRAM, "--format", "html", *options], input=message, cwd=DATA,
                              capture_output=True, check=False)
        path = FOLDER / f"{name}.html"
        path.write_bytes(done.stdout)
        self.name = name
        self.size = len(done.stdout)
        begin = time.monotonic()
        driver.get(path.as_uri())
        self.wait("document.documentElement.dataset.ready !== undefined")
        self.seconds = time.monotonic() - begin

    def js(self, text):
        return self.driver.execute_script(text)

    def wait(self, condition):
        for _ in range(400):
            if self.js(f"return {condition}"):
                return
            time.sleep(0.02)
        self.shoot("failed")
        raise AssertionError(f"{self.name}: {condition} does not come true; {self.log()}")

    def log(self):
        return [entry["message"] for entry in self.driver.get_log("browser")]

    def all(self, selector):
        return self.driver.find_elements(By.CSS_SELECTOR, selector)

    def line(self, text):
        return self.js("return [...document.querySelectorAll('#tree .line')]"
                       f".find((line) => line.textContent.includes('{text}'))")

    def keys(self, *keys):
        ActionChains(self.driver).send_keys(*keys).perform()

    def selected(self):
        return self.js("return document.querySelector('[aria-selected=true]').innerText")

    def path(self):
        return self.js("return document.querySelector('#details code').textContent")

    def marked(self, *names):
        """The octets that are marked, in digits."""
        cells = ",".join(f".octet.{name}" for name in names)
        return self.js(f"return [...document.querySelectorAll('{cells}')]"
                       ".map((cell) => cell.textContent).join('')")

    def search(self, text):
        self.keys("/")
        self.js("document.getElementById('query').value = ''")
        before = self.js("return document.getElementById('found').textContent")
        self.keys(text, Keys.ENTER)
        return before, self.js("return document.getElementById('found').textContent")

    def shoot(self, what):
        self.driver.save_screenshot(str(FOLDER / f"{self.name}-{what}.png"))


def elements_and_octets_belong_together(driver):
    page = Page(driver, "certificate", "Certificate-every-extension.hex")
    page.line("notBefore").click()
    assert page.path() == "tbsCertificate.validity.notBefore.utcTime", page.path()
    assert page.marked("in-header", "in-contents") == "170d" + b"261121143111Z".hex()
    assert page.marked("in-header") == "170d"
    # The 43rd octet is in the middle of an algorithm's identifier.
    page.all("#octets .octet")[42].click()
    assert page.path() == "tbsCertificate.signature.algorithm", page.path()
    assert "sha256WithRSAEncryption" in page.selected()
    assert page.js("return document.querySelector('#tree').getAttribute('aria-activedescendant') ==="
                   " document.querySelector('[aria-selected=true]').id")
    # Hovering shows the same without selecting.
    ActionChains(driver).move_to_element(page.line("serialNumber")).perform()
    assert page.marked("over").startswith("0214"), page.marked("over")
    ActionChains(driver).move_to_element(page.all("#octets .octet")[9]).perform()
    assert "version" in page.js("return document.querySelector('#tree .over').innerText")
    assert page.path() == "tbsCertificate.signature.algorithm"
    page.shoot("light")
    assert page.js(CONTRAST)[0] >= 4.5, page.js(CONTRAST)
    assert page.log() == []


def keys_go_everywhere(driver):
    page = Page(driver, "keys", "Certificate-every-extension.hex")
    page.keys(Keys.ARROW_DOWN, Keys.ARROW_DOWN)
    assert page.path() == "tbsCertificate.version"
    page.keys(Keys.ARROW_LEFT, Keys.ARROW_LEFT)
    assert page.path() == "tbsCertificate"
    closed = page.js("return document.querySelector('[aria-selected=true]').ariaExpanded")
    assert closed == "false", "the second key folds"
    page.keys(Keys.ARROW_DOWN)
    assert page.path() == "signatureAlgorithm"
    page.keys(Keys.ARROW_UP, Keys.ENTER, Keys.END)
    assert page.path() == "signature"
    page.keys("x")
    assert page.selected().split()[0] == format(2045 - 261, "x"), page.selected()
    page.keys("x", Keys.TAB)
    page.keys(Keys.CONTROL, Keys.HOME)
    ActionChains(driver).key_down(Keys.CONTROL).send_keys(Keys.HOME).key_up(Keys.CONTROL).perform()
    page.keys(Keys.ARROW_DOWN, Keys.ARROW_RIGHT)
    assert page.path() == "tbsCertificate.serialNumber", "the 18th octet"
    page.keys("d", Keys.ESCAPE)
    assert page.js("return document.activeElement.id") == "tree"
    assert page.js("return document.documentElement.dataset.theme") == "dark"
    page.keys(Keys.ARROW_UP)
    assert page.path() == "tbsCertificate.version"
    page.shoot("dark")
    assert page.js(CONTRAST)[0] >= 4.5, page.js(CONTRAST)
    page.keys("?")
    page.shoot("help-dark")
    assert page.js("return document.getElementById('keys').open")
    page.keys(Keys.ESCAPE)


def search_finds_text_octets_and_offsets(driver):
    page = Page(driver, "search", "Certificate-every-extension.hex", "request.b64")
    _, found = page.search("keyusage")
    assert found.startswith("1 of "), found
    assert "keyUsage" in page.selected()
    page.keys(Keys.ENTER)
    assert page.js("return document.getElementById('found').textContent").startswith("2 of ")
    page.search("06 03 55 1d 0f")
    assert page.marked("found") == "0603551d0f"
    assert page.path().endswith(".extnID"), page.path()
    page.search("@43")
    assert page.path() == "tbsCertificate.signature.algorithm"
    _, found = page.search("no such thing")
    assert found == "not found"
    page.keys(Keys.ESCAPE)
    assert page.js("return document.activeElement.id") == "tree"
    # What is folded is unfolded where something is found in it.
    page.js("document.getElementById('fold').click()")
    assert len(page.all("#tree .line")) == 2
    page.search("request.b64")
    assert "request.b64" in page.selected()
    page.shoot("light")


def faults_are_told_where_they_stand(driver):
    digits = (DATA / "Certificate-every-extension.hex").read_text().replace("\n", "")
    damaged = digits[:200] + "16" + digits[202:] + "ffff"
    page = Page(driver, "damaged", "--input", "hex", message=damaged.encode())
    page.line("error -").click()
    assert page.selected().split()[0] == "102" and "notBefore" in page.selected(), page.selected()
    page.keys(Keys.ARROW_DOWN)
    assert "IA5String" in page.selected() and page.marked("in-header") == "160d", page.selected()
    # Every octet of the message belongs to some line, trailing ones too.
    page.keys(Keys.TAB)
    ActionChains(driver).key_down(Keys.CONTROL).send_keys(Keys.END).key_up(Keys.CONTROL).perform()
    assert "ffff" in page.selected(), page.selected()
    page.shoot("light")
    page.keys("d")
    page.shoot("dark")
    assert page.js(CONTRAST)[0] >= 4.5, page.js(CONTRAST)

    hostile = Page(driver, "hostile", "--type", "Name", "Name-hostile.hex")
    assert hostile.log() == []


def large_messages_are_usable_at_once(driver):
    count = 150000
    entry = "302102100abbccdd0abbccdd0abbccdd{:08x}170d3236313132313133333330365a"
    entries = bytes.fromhex("".join(entry.format(i) for i in range(count)))
    message = b"\x30\x84" + len(entries).to_bytes(4, "big") + entries
    page = Page(driver, "large", "--type", "_SeqOfTBSCertList_revokedCertificates_element",
                message=message)
    print(f"{len(message)} octets: a page {page.size / len(message):.2f} times as long, "
          f"usable after {page.seconds:.1f} s")
    page.keys(Keys.ARROW_RIGHT, Keys.END)
    assert page.path() == f"[{count - 1}].revocationDate.utcTime", page.path()
    begin = time.monotonic()
    page.search("0abbccdd{:08x}".format(99999))
    assert page.path() == "[99999].userCertificate", page.path()
    print(f"searched in {time.monotonic() - begin:.1f} s")
    assert len(page.all(".line")) < 200, "lines are made as they are shown"
    page.shoot("light")
    driver.set_window_size(800, 900)
    time.sleep(0.3)
    page.shoot("narrow")


def main():
    if not shutil.which("chromium") or not shutil.which("chromedriver"):
        print("skipped: chromium or chromium-driver is missing")
        return 77
    FOLDER.mkdir(parents=True, exist_ok=True)
    options = webdriver.ChromeOptions()
    options.binary_location = shutil.which("chromium")
    for argument in ("--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage",
                     "--window-size=1500,900", "--force-prefers-color-scheme=light"):
        options.add_argument(argument)
    options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
    driver = webdriver.Chrome(service=Service(shutil.which("chromedriver")), options=options)
    try:
        for test in (elements_and_octets_belong_together, keys_go_everywhere,
                     search_finds_text_octets_and_offsets, faults_are_told_where_they_stand,
                     large_messages_are_usable_at_once):
            test(driver)
            print(test.__name__.replace("_", " "))
    finally:
        driver.quit()
    return 0


sys.exit(main())
