"""The manual page and the completion know what the program knows."""

import re
import unittest

from programs import API_CHECK, PLUGIN_CHECK, ROOT, SANCTL, SIMCTL, SIMULATOR, run

PACKAGING = ROOT / "packaging"


def options(*command, program=SANCTL):
    shown = run(program, *command, "--help").stdout
    return set(re.findall(r"^  (?:-\w,)?(--[a-z-]+)", shown, re.M))


def commands(program=SANCTL):
    shown = run(program, "--help").stdout
    listed = shown.partition("Subcommands:\n")[2].partition("\n\n")[0]
    return re.findall(r"^  ([a-z-]+)", listed, re.M)


class PackagingTest(unittest.TestCase):
    def test_the_manual_names_every_subcommand_and_option(self):
        for program in SANCTL, SIMCTL, SIMULATOR, API_CHECK, PLUGIN_CHECK:
            page = (PACKAGING / f"man/{program.name}.1").read_text(encoding="utf-8")
            page = page.replace("\\-", "-")
            names = commands(program)
            self.assertEqual(bool(names), program in (SANCTL, SIMCTL))
            for name in names:
                self.assertRegex(page, rf"\.(?:B|BR|SS) .*\b{name}\b",
                                 f"describe {name} in packaging/man/{program.name}.1")
            known = options(program=program).union(
                *(options(name, program=program) for name in names))
            self.assertEqual(set(re.findall(r"--[a-z-]+", page)), known, program)

    def test_all_programs_tell_the_same_version(self):
        told = [run(program, "--version").stdout.split() for program in
                (SANCTL, SIMCTL, SIMULATOR, API_CHECK, PLUGIN_CHECK)]
        self.assertEqual([name for name, _ in told],
                         ["sanctl", "simctl", "sanSim", "sanApiCheck", "sanPluginCheck"])
        self.assertEqual(len({version for _, version in told}), 1)

    def complete(self, *words, program=SANCTL):
        script = ('. "$1"; shift; compopt() { :; }; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1));'
                  ' _sanctl; printf "%s\\n" "${COMPREPLY[@]}"')
        done = run("bash", "-c", script, "bash", PACKAGING / "bash-completion/sanctl", program,
                   *words)
        self.assertEqual(done.returncode, 0, done)
        self.assertEqual(done.stderr, "")
        offered = done.stdout.split()
        self.assertEqual(len(offered), len(set(offered)), "nothing is offered twice")
        return set(offered)

    def test_completion_offers_what_fits(self):
        self.assertLessEqual(set(commands()) | options(), self.complete(""))
        self.assertEqual(self.complete("make-data-a"), {"make-data-available"})
        self.assertEqual(self.complete("add-server", "--o"), {"--os-type", "--os-release"})
        self.assertEqual(self.complete("lifecycle", "ping"), set())
        self.assertEqual(self.complete("ping", "--timeout", ""), set())
        self.assertEqual(self.complete("ping", "--cacert", __file__[:-1]), {__file__})

    def test_completion_knows_the_simulators_programs_too(self):
        shared = {"--help", "--version", "--port", "--control", "--url", "--token-file", "--json"}
        filters = {"--command", "--cluster", "--outcome", "--fault"}
        for program, words, offered in (
                (SIMCTL, ["st"], {"state"}),
                (SIMCTL, ["fail", "--co"], {"--code", "--count", "--control", "--commands"}),
                (SIMCTL, ["log", "-"], shared | filters | {"--last", "--follow"}),
                (SIMCTL, ["fail", "RemoveH"], {"RemoveHccFromSan"}),
                (SIMCTL, ["log", "-n", ""], set()),
                (SIMCTL, ["--port", ""], set()),
                (SIMCTL, ["reset", ""], shared | {"faults", "log", "state", "all"}),
                (SIMCTL, ["fail", "re"], set()),
                (SIMCTL, ["fail", "Ping", "re"], {"refuse", "refuseWithoutTexts", "reset"}),
                (SIMULATOR, ["--s"], {"--seed-file", "--state", "--scenario", "--show-keys"}),
                (SIMULATOR, ["--scenario", __file__[:-1]], {__file__})):
            with self.subTest(words):
                self.assertEqual(self.complete(*words, program=program), offered)
