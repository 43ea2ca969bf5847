"""The HTML report in a browser: usage: report_test.py QVINSPECT REPOSITORY [unittest options]."""

import json
import pathlib
import subprocess
import sys
import tempfile
import unittest

from selenium import webdriver
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys
from selenium.webdriver.support.ui import Select

BROWSER = "/usr/bin/chromium"
DRIVER = "/usr/bin/chromedriver"
PROGRAM, REPOSITORY = sys.argv[1], pathlib.Path(sys.argv[2])
HDR10 = REPOSITORY / "samples/hevc_hdr10.h265"
TIMED = REPOSITORY / "tests/streams/bundled/avc_hrd_picstruct.h264"  # by its VUI
VIVID = REPOSITORY / "tests/streams/bundled/hevc_vivid_hand.h265"
WHOLE_VIVID = 10  # HDR Vivid messages that are not truncated
HOSTILE_NAME = "<script>console.error(1)<!--\"'&\n.h264"


def vivid_messages():
    """Number of messages with the T.35 header of HDR Vivid in the stream's expectations."""
    sei = json.loads(VIVID.with_name(VIVID.name + ".expect.json").read_text())["sei"]
    return json.dumps(sei["list"]).count('"2600040005')


def listing(stream):
    """(access units, key pictures, NAL units) of a stream, from the listing."""
    text = subprocess.run(
        [PROGRAM, "--level", "nalus", stream], check=True, capture_output=True, text=True
    ).stdout
    lines = text.split("\nSummary of ")[0].splitlines()[5:]
    access_units = [line for line in lines if line.startswith("AU ")]
    units = [line for line in lines if line.startswith(" ") and line.split()[0].isdigit()]
    return len(access_units), sum(line.endswith("key") for line in access_units), len(units)


def start_browser(profile):
    options = webdriver.ChromeOptions()
    options.binary_location = BROWSER
    for flag in (
        "--headless --no-sandbox --disable-gpu --disable-quic --no-first-run --disable-background-networking "
        "--disable-component-update --disable-sync --disable-dev-shm-usage"
    ).split():
        options.add_argument(flag)
    options.add_argument("--user-data-dir=" + profile)
    options.set_capability("goog:loggingPrefs", {"browser": "ALL", "performance": "ALL"})
    return webdriver.Chrome(service=Service(DRIVER), options=options)


class ReportTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.folder.cleanup)
        profile = tempfile.TemporaryDirectory(ignore_cleanup_errors=True)
        cls.addClassCleanup(profile.cleanup)
        cls.browser = start_browser(profile.name)
        cls.addClassCleanup(cls.browser.quit)
        folder = pathlib.Path(cls.folder.name)
        cls.many_units = folder / "many.h264"
        cls.many_units.write_bytes(cls.stream_of(3000))
        cls.hostile = folder / HOSTILE_NAME
        cls.hostile.write_bytes(cls.hostile_stream())
        cls.pages = {}
        for name, streams in {
            "hdr10": [HDR10], "timed": [TIMED], "vivid": [VIVID], "many": [cls.many_units],
            "hostile": [cls.hostile, HDR10, folder / "missing"],
        }.items():
            page = folder / (name + ".html")
            subprocess.run([PROGRAM, "--html", page, *streams], capture_output=True, check=False)
            cls.pages[name] = page.as_uri()

    @staticmethod
    def stream_of(pictures):
        """Parameter sets, the second with forbidden_zero_bit set; then pictures, every 100th of them IDR."""
        code = b"\0\0\0\1"
        stream = code + bytes.fromhex("6742000af841a2") + code + bytes.fromhex("e8ce3880")
        for i in range(pictures):
            stream += code + bytes.fromhex("65888400" if i % 100 == 0 else "419a2466") + bytes([1 + i % 50]) * 9
        return stream

    @staticmethod
    def hostile_stream():
        text = b"</script><script>console.error(2)</script><img src=http://192.0.2.1/x onerror=console.error(3)>"
        sei = bytes([6, 5, 16 + len(text)]) + bytes(16) + text + b"\x80"
        return b"\0\0\0\1" + sei + ReportTest.stream_of(3)

    def open(self, page, width=1280, scheme="light"):
        self.browser.get_log("browser")
        self.browser.get_log("performance")
        self.browser.execute_cdp_cmd(
            "Emulation.setDeviceMetricsOverride",
            {"width": width, "height": 900, "deviceScaleFactor": 1, "mobile": False},
        )
        self.browser.execute_cdp_cmd(
            "Emulation.setEmulatedMedia", {"features": [{"name": "prefers-color-scheme", "value": scheme}]}
        )
        self.browser.get(self.pages[page])

    def all(self, selector):
        return self.browser.find_elements(By.CSS_SELECTOR, selector)

    def one(self, selector):
        return self.browser.find_element(By.CSS_SELECTOR, selector)

    def count(self, selector):
        return self.browser.execute_script("return document.querySelectorAll(arguments[0]).length", selector)

    def press(self, *keys):
        ActionChains(self.browser).send_keys(*keys).perform()

    def column(self, number):
        return self.browser.execute_script(
            "return [...document.querySelectorAll('.units tbody tr:not([hidden])')]"
            ".map((row) => row.cells[arguments[0]].textContent)", number)

    def view(self, figure):
        box = self.browser.execute_script(
            "return document.querySelector(arguments[0]).getAttribute('viewBox')", f".{figure} svg.drawing")
        return [float(number) for number in box.split()]

    def assert_quiet(self):
        """The console has no messages, and nothing was requested from a network."""
        self.assertEqual(self.browser.get_log("browser"), [])
        requests = []
        for entry in self.browser.get_log("performance"):
            message = json.loads(entry["message"])["message"]
            if message["method"] == "Network.requestWillBeSent":
                requests.append(message["params"]["request"]["url"])
        self.assertEqual([url for url in requests if not url.startswith(("file:", "data:"))], [])
        self.assertTrue(any(url.startswith("file:") for url in requests), "requests are not recorded")

    def test_pages_are_quiet_and_fit_every_width_and_scheme(self):
        backgrounds = {}
        for page in self.pages:
            for width, scheme in ((1280, "light"), (380, "light"), (1280, "dark"), (380, "dark")):
                with self.subTest(page=page, width=width, scheme=scheme):
                    self.open(page, width, scheme)
                    self.assert_quiet()
                    wide = self.browser.execute_script(
                        "const root = document.documentElement;"
                        "return [innerWidth, root.scrollWidth - root.clientWidth]")
                    self.assertEqual(wide, [width, 0])
                    backgrounds.setdefault(scheme, set()).add(self.one("body").value_of_css_property("background-color"))
                    self.assertEqual(self.count(".no-script"), 0)
        self.assertEqual(len(backgrounds["light"]), 1)
        self.assertEqual(len(backgrounds["dark"]), 1)
        self.assertNotEqual(backgrounds["light"], backgrounds["dark"])

    def test_text_stands_out_in_both_schemes(self):
        luminance = (
            "const luminance = (text) => text.match(/[0-9.]+/g).slice(0, 3).map((c) => c / 255)"
            ".map((c) => c <= 0.03928 ? c / 12.92 : ((c + 0.055) / 1.055) ** 2.4)"
            ".reduce((sum, c, i) => sum + c * [0.2126, 0.7152, 0.0722][i], 0);"
            "const card = luminance(getComputedStyle(document.querySelector('.card')).backgroundColor);"
            "const contrast = (a) => (Math.max(a, card) + 0.05) / (Math.min(a, card) + 0.05);"
            "return [...document.querySelectorAll(arguments[0])].map((one) =>"
            " contrast(luminance(getComputedStyle(one)[arguments[1]])));"
        )
        for scheme in ("light", "dark"):
            self.open("vivid", scheme=scheme)
            for selector, style, least in (
                ("dt, dd, h3, .note, summary, td, th", "color", 4.5),
                ("svg.plot text", "fill", 4.5),
                ("rect.size, rect.key, rect.rate, rect.sei, rect.band, rect.mastering, rect.light", "fill", 2.6),
            ):
                with self.subTest(scheme=scheme, selector=selector):
                    contrasts = self.browser.execute_script(luminance, selector, style)
                    self.assertGreater(len(contrasts), 0)
                    self.assertGreaterEqual(min(contrasts), least)

    def test_plots_have_the_marks_of_the_stream(self):
        for page, stream in (("hdr10", HDR10), ("timed", TIMED), ("vivid", VIVID), ("many", self.many_units)):
            with self.subTest(page=page):
                access_units, keys, units = listing(stream)
                self.open(page)
                bins = access_units if access_units <= 2048 else (access_units + 1) // 2
                self.assertEqual(self.count(".sizes .drawing.main rect.size"), bins)
                self.assertEqual(self.count(".sizes .drawing.key rect"), keys)
                self.assertEqual(self.count(".sizes tbody tr"), bins)
                self.assertEqual(self.count(".units tbody tr"), min(units, 2000))

    def test_hdr_vivid_has_a_mark_for_each_message(self):
        self.open("vivid")
        self.assertEqual(sum("HDR Vivid" in row for row in self.column(7)), vivid_messages())
        self.assertEqual(self.count(".vivid rect.band"), self.count(".vivid tbody tr"))
        self.assertEqual(self.count(".vivid rect.band"), WHOLE_VIVID)
        self.open("timed")
        self.assertEqual(self.count(".hdr, .vivid"), 0)

    def test_titles_and_labels(self):
        self.open("vivid")
        self.assertEqual(self.count(".drawing rect"), self.count(".drawing rect > title"))
        self.assertEqual(self.count("svg[role=img]"), self.count("svg[role=img][aria-label]"))
        self.assertEqual(self.count("figure:not(.mix):not(.errors)"), self.count("figure > details.data"))

    def test_sorting(self):
        self.open("vivid")
        heads = self.all(".units thead th")
        size = heads[4].find_element(By.TAG_NAME, "button")
        size.click()
        sizes = [int(text) for text in self.column(4)]
        self.assertEqual(sizes, sorted(sizes))
        self.assertEqual(heads[4].get_attribute("aria-sort"), "ascending")
        size.send_keys(Keys.ENTER)
        sizes = [int(text) for text in self.column(4)]
        self.assertEqual(sizes, sorted(sizes, reverse=True))
        self.assertEqual(heads[4].get_attribute("aria-sort"), "descending")
        heads[6].find_element(By.TAG_NAME, "button").click()
        names = self.column(6)
        self.assertEqual(names, sorted(names))
        self.assertEqual(heads[4].get_attribute("aria-sort"), "none")

    def test_filter(self):
        self.open("vivid")
        count = len(self.column(0))
        self.one(".find").send_keys("hdr vivid")
        self.assertEqual(len(self.column(0)), vivid_messages())
        self.assertEqual(self.one(".shown").text, f"{vivid_messages()} of {count} shown")
        self.one(".find").send_keys(Keys.CONTROL, "a")
        self.one(".find").send_keys(Keys.DELETE)
        Select(self.one("select.type")).select_by_value("33")
        self.assertEqual(set(self.column(6)), {"SPS_NUT"})
        Select(self.one("select.type")).select_by_value("")
        self.one(".keys").click()
        keys = self.column(1)
        self.assertTrue(0 < len(keys) < count)
        self.one(".controls .errors").click()
        self.assertEqual(self.column(0), [])
        self.open("many")
        self.one(".controls .errors").click()
        self.assertEqual(self.column(0), ["2"])

    def test_drawer(self):
        self.open("hdr10")
        button = self.all("button.unit")[4]
        button.click()
        offset, length = (int(self.column(i)[4]) for i in (3, 4))
        unit = HDR10.read_bytes()[offset : offset + length]
        self.assertTrue(self.one("#drawer").is_displayed())
        shown = "".join(line[6:53].replace(" ", "") for line in self.one("#drawer .hex").text.splitlines())
        self.assertEqual(shown, unit[:64].hex())
        self.assertIn("SEI 137 mastering_display_colour_volume", self.one("#drawer").text)
        self.assertIn("max_display_mastering_luminance", self.one("#drawer").text)
        self.press(Keys.ESCAPE)
        self.assertFalse(self.one("#drawer").is_displayed())
        self.assertEqual(self.browser.switch_to.active_element, button)

    def test_drawer_follows_sorting(self):
        self.open("hdr10")
        self.all(".units thead button")[4].click()
        self.all("button.unit")[0].click()
        offset, length = (int(self.column(i)[0]) for i in (3, 4))
        self.assertIn(f"All {length} bytes", self.one("#drawer").text)
        self.assertTrue(
            self.one("#drawer .hex").text.startswith(
                "0000  " + HDR10.read_bytes()[offset : offset + length].hex(" ")))

    def test_keyboard_walks_the_table(self):
        self.open("hdr10")
        self.browser.execute_script("document.querySelector('.units .scroll').focus()")
        for _ in range(9):  # the column heads
            self.press(Keys.TAB)
        focus = lambda: self.browser.switch_to.active_element
        self.assertEqual((focus().get_attribute("class"), focus().text), ("unit", "1"))
        self.assertNotEqual(focus().value_of_css_property("outline-style"), "none")
        self.press(Keys.ENTER)
        self.assertIn("Unit 1", self.one("#drawer-title").text)
        self.press(Keys.ARROW_DOWN, Keys.ARROW_DOWN)
        self.assertEqual(focus().text, "3")
        self.assertIn("Unit 3", self.one("#drawer-title").text)
        self.press(Keys.END)
        self.assertEqual(focus().text, "9")
        self.press(Keys.ARROW_DOWN, Keys.HOME, Keys.ARROW_UP)
        self.assertEqual(focus().text, "1")
        self.press(Keys.ESCAPE)
        self.assertFalse(self.one("#drawer").is_displayed())

    def test_zoom_by_buttons_and_keys(self):
        self.open("many")
        whole = self.view("sizes")
        tools = self.all(".sizes .tools button")
        tools[0].click()
        half = self.view("sizes")
        self.assertAlmostEqual(half[2], whole[2] / 2, places=3)
        self.assertEqual(self.view("errors"), half)
        first = self.one(".sizes g.x text").text
        self.assertGreater(float(first), half[0])
        tools[3].click()
        self.assertGreater(self.view("sizes")[0], half[0])
        tools[4].click()
        self.assertEqual(self.view("sizes"), whole)
        self.assertFalse(tools[4].is_enabled())
        self.browser.execute_script("document.querySelector('.sizes .frame').focus()")
        self.press("+")
        self.assertEqual(self.view("sizes"), half)
        self.press(Keys.HOME)
        self.assertEqual(self.view("sizes")[0], 0)
        self.press("0")
        self.assertEqual(self.view("sizes"), whole)
        for _ in range(20):
            self.press("+")
        self.assertAlmostEqual(self.view("sizes")[2], 2, places=3)  # four access units, two in a bin

    def test_zoom_by_wheel_and_drag(self):
        self.open("many")
        whole = self.view("sizes")
        frame = self.one(".sizes .frame")
        self.browser.execute_script("arguments[0].scrollIntoView({block: 'center'})", frame)
        box = self.browser.execute_script(
            "const b = document.querySelector('.sizes svg.plot').getBoundingClientRect();"
            "return [b.left, b.top, b.width, b.height]")
        middle = int(box[1] + box[3] / 3)

        def wheel(delta):
            self.browser.execute_cdp_cmd("Input.dispatchMouseEvent", {
                "type": "mouseWheel", "x": int(box[0] + box[2] / 2), "y": middle, "deltaX": 0, "deltaY": delta})

        frame_top = frame.rect["y"]
        wheel(10)
        self.assertEqual(self.view("sizes"), whole)  # without the focus the page scrolls
        self.browser.execute_script("arguments[0].scrollIntoView({block: 'center'})", frame)
        self.browser.execute_script("arguments[0].focus()", frame)
        wheel(-100)
        self.assertAlmostEqual(self.view("sizes")[2], whole[2] * 0.8, places=2)
        self.press("0")
        for kind, share in (("mousePressed", 0.25), ("mouseMoved", 0.5), ("mouseReleased", 0.5)):
            self.browser.execute_cdp_cmd("Input.dispatchMouseEvent", {
                "type": kind, "x": int(box[0] + box[2] * share), "y": middle, "button": "left", "clickCount": 1})
        view = self.view("sizes")
        self.assertAlmostEqual(view[0], whole[2] / 4, delta=whole[2] / 100)
        self.assertAlmostEqual(view[2], whole[2] / 4, delta=whole[2] / 100)
        self.assertEqual(frame_top, frame.rect["y"])
        self.assertEqual(self.count(".choice"), 0)

    def test_hostile_names_and_text_stay_text(self):
        self.open("hostile")
        self.assert_quiet()
        self.assertEqual(self.count("img"), 0)
        sections = self.all("section.file")
        self.assertEqual(len(sections), 3)
        self.assertEqual(sections[0].find_element(By.TAG_NAME, "h2").text, HOSTILE_NAME.replace("\n", "\\x0A"))
        self.assertIn("not inspected", sections[2].text)
        self.assertEqual([link.text for link in self.all("nav a")],
                         [section.find_element(By.TAG_NAME, "h2").text for section in sections])
        self.one("button.unit").click()
        self.assertIn("</script><script>console.error(2)", self.one("#drawer").text)
        self.assert_quiet_after_click()

    def test_injected_code_is_blocked(self):
        """Code that somebody adds to the page does not run; the page's own does, under the same policy."""
        page = pathlib.Path(self.folder.name) / "hdr10.html"
        text = page.read_text()
        self.assertNotIn("unsafe-inline", text)
        injected = (
            '<script>document.title = "script"</script>'
            '<script src="data:text/javascript,document.title=%22source%22"></script>'
            '<img src="http://192.0.2.1/x" onerror="document.title = \'handler\'">'
            '<a id="link" href="javascript:void(document.title = \'link\')">link</a>'
            '<button id="handler" onclick="document.title = \'click\'">button</button>'
            '<base href="http://192.0.2.1/"><style>h1 { color: rgb(1, 2, 3) }</style>'
            '<p id="styled" style="color: rgb(1, 2, 3)">text</p></main>'
        )
        self.assertEqual(text.count("</main>"), 1)
        changed = page.with_name("injected.html")
        changed.write_text(text.replace("</main>", injected))
        self.pages["injected"] = changed.as_uri()
        self.addCleanup(self.pages.pop, "injected")
        self.open("injected")
        title = self.browser.title
        self.assertIn("hevc_hdr10.h265", title)
        self.browser.execute_script("document.getElementById('link').click();document.getElementById('handler').click()")
        self.assertEqual(self.browser.title, title)
        for selector in ("h1", "#styled"):
            self.assertNotIn("1, 2, 3", self.one(selector).value_of_css_property("color"))
        self.assertEqual(self.browser.execute_script("return document.baseURI"), self.pages["injected"])
        refused = [entry["message"] for entry in self.browser.get_log("browser")]
        for directive in ("script-src", "style-src", "img-src", "base-uri"):
            self.assertTrue(any(directive in message for message in refused), (directive, refused))
        self.assertEqual(self.count(".no-script"), 0)
        self.all("button.unit")[4].click()
        self.assertTrue(self.one("#drawer").is_displayed())

    def assert_quiet_after_click(self):
        self.assertEqual(self.browser.get_log("browser"), [])

    def test_reads_without_scripts(self):
        self.browser.execute_cdp_cmd("Emulation.setScriptExecutionDisabled", {"value": True})
        try:
            self.open("timed")
            self.assertTrue(self.one("noscript p").is_displayed())
            self.assertFalse(self.one(".controls").is_displayed())
            self.assertIn("Access-unit sizes", self.one("main").text)
        finally:
            self.browser.execute_cdp_cmd("Emulation.setScriptExecutionDisabled", {"value": False})


if __name__ == "__main__":
    for program in (BROWSER, DRIVER):
        if not pathlib.Path(program).exists():
            sys.exit(f"{program} is missing; scripts/test installs it (Debian: chromium, chromium-driver)")
    unittest.main(argv=[sys.argv[0], *sys.argv[3:]])
