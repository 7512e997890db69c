"""What watches the service: Prometheus reads the metrics and tries the alerts, and rules and
board name metrics that there are. Needs promtool."""

import json
import re
import subprocess

import harness
from programs import ROOT
import soap

FOLDER = ROOT / "packaging" / "monitoring"
METRIC = re.compile(r"\bsan_[a-z_]+")


def promtool(*arguments, **options):
    return subprocess.run(["promtool", *arguments], cwd=FOLDER, text=True, check=False,
                          capture_output=True, **options)


class MonitoringTest(harness.ServiceCase):
    def test_metrics_alerts_and_board_fit_together(self):
        self.server.post(soap.PING)
        metrics = self.server.request("GET", "/san-status/metrics").text
        for arguments, text in ((("check", "metrics"), metrics),
                                (("check", "rules", "san-service.rules.yml"), None),
                                (("test", "rules", "san-service.test.yml"), None)):
            with self.subTest(arguments):
                done = promtool(*arguments, input=text)
                self.assertEqual((done.returncode, done.stderr), (0, ""), done.stdout)
        board = json.loads((FOLDER / "san-service.dashboard.json").read_text())
        used = {name for panel in board["panels"] for target in panel["targets"]
                for name in METRIC.findall(target["expr"])}
        used |= set(METRIC.findall((FOLDER / "san-service.rules.yml").read_text()))
        self.assertGreater(len(used), 8)
        self.assertLessEqual(used, set(METRIC.findall(metrics)))
