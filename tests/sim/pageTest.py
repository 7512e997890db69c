"""The simulator's page in a real browser: it follows what happens, and its buttons do what they
say."""

import tempfile
import unittest

from selenium import webdriver
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys
from selenium.webdriver.support.ui import Select, WebDriverWait

import wire
from arraySimulator import ArraySimulator
from commandTest import call

FLAGS = """--headless --no-sandbox --disable-gpu --disable-quic --no-first-run
--disable-background-networking --disable-component-update --disable-sync
--window-size=1440,1000""".split()


def browser(folder):
    options = webdriver.ChromeOptions()
    for flag in FLAGS + [f"--user-data-dir={folder}"]:
        options.add_argument(flag)
    options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
    return webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)


class PageTest(unittest.TestCase):
    def setUp(self):
        self.simulator = self.enterContext(ArraySimulator("--web", "0"))
        self.port = self.simulator.port
        self.page = self.enterContext(browser(self.enterContext(tempfile.TemporaryDirectory())))
        self.page.get(f"http://127.0.0.1:{self.simulator.web_port}/")

    def find(self, selector):
        return self.page.find_element(By.CSS_SELECTOR, selector)

    def text(self, selector):
        return self.find(selector).get_attribute("textContent")

    def wait(self, selector, words):
        """Until the words stand there: the page asks for news on its own."""
        WebDriverWait(self.page, 60).until(
            lambda _: words in self.text(selector), f"{words!r} never came to {selector}")

    def test_it_shows_what_happens_as_it_happens_to_the_end(self):
        self.wait("#live", "live")
        self.wait("#volumeCount", "8")
        call(self.port, "AddHccToSan", HccName="<img src=x onerror=alert(1)>")
        self.wait("#clusters", "<img src=x onerror=alert(1)>")
        for command in ("AddServer", "HccAttachVolume", "MakeDataAvailable"):
            call(self.port, command)
        self.wait("#clusters", "db-1")
        self.wait("#volumes tr:first-child", "hcn-1")
        call(self.port, "HccAttachVolume", VolumeId="vol-99")
        self.wait("#exchanges li:first-child", 'Volume "vol-99" is not known to this array')
        self.find("#exchanges summary").click()
        self.assertIn("<VolumeId>vol-99</VolumeId>", self.find("#exchanges pre").text)
        self.assertEqual(self.page.find_elements(By.CSS_SELECTOR, "#clusters img"), [])
        self.assertNotIn("marker-key", self.page.page_source)
        self.assertEqual([line for line in self.page.get_log("browser")
                          if line["level"] == "SEVERE"], [])
        self.simulator.end()
        self.wait("#live", "does not answer")

    def test_an_exchange_names_what_it_is_about_and_can_be_filtered_and_paused(self):
        for command, changes in (("AddHccToSan", {}), ("AddServer", {}), ("HccAttachVolume", {}),
                                 ("HccAttachVolume", {"VolumeId": "vol-99"})):
            call(self.port, command, **changes)
        self.wait("#exchangeCount", "4")
        for about in ("cluster hcc-1", "server hcn-1", "volume vol-99"):
            self.assertIn(about, self.text("#exchanges li:first-child .about"))
        self.find("#filter").send_keys("vol-99")
        self.wait("#exchangeCount", "1 of 4")
        self.find("#filter").clear()
        self.find("#filter").send_keys(Keys.SPACE)
        Select(self.find("#outcome")).select_by_value("bad")
        self.wait("#exchangeCount", "1 of 4")
        Select(self.find("#outcome")).select_by_value("")
        lines = self.page.find_elements(By.CSS_SELECTOR, "#exchanges summary")
        lines[0].send_keys(Keys.ARROW_DOWN)
        self.assertEqual(self.page.switch_to.active_element, lines[1])
        self.page.switch_to.active_element.send_keys(Keys.END)
        self.assertEqual(self.page.switch_to.active_element, lines[3])
        self.find("#pause").click()
        wire.call(self.port, "Ping")
        self.wait("#timeline", "AddServer")
        self.assertEqual(self.text("#exchangeCount"), "4")
        self.find("#pause").click()
        self.wait("#exchangeCount", "5")
        self.wait("#timeline", "Ping")

    def test_what_was_opened_stays_open_and_a_reset_is_asked_about(self):
        self.wait("#volumeCount", "8")
        self.find("#volumes tr:nth-child(2) summary").click()
        call(self.port, "AddHccToSan")
        self.wait("#clusterCount", "1")
        self.assertEqual(len(self.page.find_elements(By.CSS_SELECTOR, "#volumes [open]")), 1)
        for answer, clusters in (("no", "1"), ("yes", "0")):
            self.find("#resetAll").click()
            self.find(f"#confirm [value={answer}]").click()
            self.wait("#clusterCount", clusters)

    def test_nothing_is_without_a_name_or_too_wide(self):
        call(self.port, "AddHccToSan", HccId="h" * 60, HccName="n" * 90)
        self.wait("#clusterCount", "1")
        nameless = self.page.execute_script(
            "return [...document.querySelectorAll('button, input, select, textarea')].filter(e =>"
            " !e.textContent.trim() && !e.getAttribute('aria-label') && !e.closest('label'))"
            ".map(e => e.outerHTML)")
        self.assertEqual(nameless, [])
        for width, first in ((1440, "#stock"), (1000, "#calls"), (500, "#calls")):
            self.page.set_window_size(width, 1000)
            with self.subTest(width=width):
                self.assertLessEqual(self.page.execute_script(
                    "return document.documentElement.scrollWidth - innerWidth"), 0)
                places = {section: self.find(section).rect for section in ("#stock", "#calls")}
                before = min(places, key=lambda one: (places[one]["y"], places[one]["x"]))
                self.assertEqual(before, first)

    def test_every_fault_can_be_chosen_and_every_member_set(self):
        self.wait("#kinds", "refuse")
        Select(self.find("#command")).select_by_value("TarnHostCache::Ping")
        self.find("#more summary").click()
        members = {"error": "Not today", "code": "Timeout", "localized": "l", "detail": "d",
                   "document": "<a/>", "count": "2", "after": "0", "delayMs": "1", "forMs": "60000",
                   "chunk": "100", "intervalMs": "1", "bytes": "3"}
        for name, value in members.items():
            self.find(f"#{name}").clear()
            self.find(f"#{name}").send_keys(value)
        choices = self.page.find_elements(By.CSS_SELECTOR, "#kinds label")
        for count, choice in enumerate(choices, 1):
            choice.click()
            self.assertTrue(choice.find_element(By.CLASS_NAME, "hint").is_displayed())
            self.find("#add").click()
            self.wait("#ruleCount", str(count))
        self.assertEqual(self.text("#problem"), "")
        rules = self.simulator.show("fail", "--rules")
        self.assertEqual([rule["fault"] for rule in rules],
                         [choice.find_element(By.CLASS_NAME, "mono").text for choice in choices])
        for name, value in members.items():
            self.assertEqual(str(rules[0][name]), value)
        self.assertEqual(wire.call(self.port, "Ping").error, "Not today")
        self.wait("#exchanges li:first-child", "Not today")
        self.find("#rules li:last-child button").click()
        self.wait("#ruleCount", str(len(choices) - 1))
        self.find("[data-reset=faults]").click()
        self.wait("#ruleCount", "0")
        self.assertTrue(wire.call(self.port, "Ping").ok)


class TokenTest(unittest.TestCase):
    def test_the_page_keeps_its_token_to_itself(self):
        simulator = self.enterContext(ArraySimulator("--web", "0", "--listen", "0.0.0.0"))
        page = self.enterContext(browser(self.enterContext(tempfile.TemporaryDirectory())))
        place = f"http://127.0.0.1:{simulator.web_port}/"
        for url, words in ((place, "wants its token"),
                           (place + "#" + simulator.web_url.split("#")[1], "live")):
            page.get("about:blank")
            page.get(url)
            WebDriverWait(page, 60).until(
                lambda _: words in page.find_element(By.ID, "live").text)
        self.assertEqual(page.current_url, place)
