"""What watches the service: Prometheus reads the metrics and tries the alerts; rules, board and
page name metrics that there are. Needs promtool."""

import json
import re
import subprocess
import tempfile

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
        board = json.loads((FOLDER / "san-service.dashboard.json").read_text())
        expressions = [target["expr"] for panel in board["panels"] for target in panel["targets"]]
        # What the board asks is read as rules that record it.
        asked = self.enterContext(tempfile.NamedTemporaryFile("w", suffix=".json"))
        json.dump({"groups": [{"name": "board", "rules": [
            {"record": f"panel:{number}", "expr": expression}
            for number, expression in enumerate(expressions)]}]}, asked)
        asked.flush()
        self.server.post(soap.PING)
        metrics = self.server.request("GET", "/san-status/metrics").text
        for arguments, text in ((("check", "metrics"), metrics),
                                (("check", "rules", "san-service.rules.yml"), None),
                                (("check", "rules", asked.name), None),
                                (("test", "rules", "san-service.test.yml"), None)):
            with self.subTest(arguments):
                done = promtool(*arguments, input=text)
                self.assertEqual((done.returncode, done.stderr), (0, ""), done.stdout)
        used = set(METRIC.findall("\n".join(expressions)))
        self.assertGreater(len(used), 7)
        used |= set(METRIC.findall((FOLDER / "san-service.rules.yml").read_text()))
        self.assertLessEqual(used, set(METRIC.findall(metrics)))
        described = re.findall("(?m)^. `(san_[a-z_]+)` .", (ROOT / "docs/operations.md").read_text())
        self.assertEqual(set(described), set(re.findall(r"# TYPE (\w+)", metrics)))
