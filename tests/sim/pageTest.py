"""The simulator's page in a real browser: it follows what happens, and its buttons do what they
say."""

import tempfile
import unittest

from selenium import webdriver
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.by import By
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

    def test_every_fault_has_a_button_that_works(self):
        self.wait("#kinds", "refuse")
        Select(self.find("#command")).select_by_value("TarnHostCache::Ping")
        self.find("#error").send_keys("Not today")
        buttons = self.page.find_elements(By.CSS_SELECTOR, "#kinds button")
        for count, button in enumerate(buttons, 1):
            button.click()
            self.wait("#ruleCount", str(count))
        self.assertEqual(self.text("#problem"), "")
        tags = self.page.find_elements(By.CSS_SELECTOR, "#rules .tag")
        self.assertEqual([button.text for button in buttons], [tag.text for tag in tags])
        self.assertEqual(wire.call(self.port, "Ping").error, "Not today")
        self.wait("#exchanges li:first-child", "Not today")
        self.wait("#ruleCount", str(len(buttons) - 1))
        self.find("#rules li:last-child button").click()
        self.wait("#ruleCount", str(len(buttons) - 2))
        self.find("[data-reset=faults]").click()
        self.wait("#ruleCount", "0")
        self.assertTrue(wire.call(self.port, "Ping").ok)
