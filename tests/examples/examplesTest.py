"""The example programs against the array simulator."""

import unittest

from arraySimulator import ArraySimulator
from programs import BUILD, PRELOADED, closed_port, run

SEED = {"clusters": [{"id": "hcc-1", "name": "left & right", "key": "k1"},
                     {"id": "hcc-2", "name": "other", "key": "k2"}]}


def list_clusters(port, *arguments):
    """Runs listClusters with the API manager at that port; gives (status, output, errors)."""
    done = run(BUILD / "examples" / "listClusters", *arguments,
               **{**PRELOADED, "SAN_TEST_APIMGR_PORT": str(port)})
    return done.returncode, done.stdout, done.stderr


class ListClusters(unittest.TestCase):
    def test_prints_the_typed_return(self):
        port = self.enterContext(ArraySimulator(seed_file=SEED)).port
        for arguments, expected in [
                ([], "success=1\nclusters=2\n101.1 left & right\n101.2 other\n"),
                (["left & right"], "success=1\nclusters=1\n101.1 left & right\n"),
                (["nobody"], "success=1\nclusters=0\n")]:
            with self.subTest(arguments):
                self.assertEqual(list_clusters(port, *arguments), (0, expected, ""))

    def test_says_that_no_api_manager_answers(self):
        with closed_port() as port:
            status, output, errors = list_clusters(port)
        self.assertEqual((status, output), (3, ""))
        self.assertIn("Unable to connect: Connection refused", errors)
