"""Many operations at once: each reply belongs to its request, and each request reaches the API
manager exactly once."""

import collections
import concurrent.futures
import contextlib

import arraySimulator
import harness
import soap
from operations import OPERATIONS, SCSI

CONNECTIONS = 32
REQUESTS = 5000


# A success whose SCSI identity, or a refusal whose text, names the cluster that asked.
ATTACHED = arraySimulator.success(SCSI.replace("o-dev", "{hccId}"))


class MixedLoadTest(harness.ServiceCase):
    # More threads than connections: with none idle the server closes kept-alive connections, and
    # a request that is on its way then cannot be told from a lost one.
    server_options = {"threads": 2 * CONNECTIONS}

    def test_replies_belong_to_their_requests(self):
        self.array.fail("answer", "HccAttachVolume", document=ATTACHED, count=0)
        self.array.fail("refuse", error="refused {hccId}", count=0)
        rows = [row for row in OPERATIONS if row.name != "Ping"]

        def run(worker):
            with contextlib.closing(self.server.connect()) as connection:
                for number in range(worker, REQUESTS, CONNECTIONS):
                    row = rows[number % len(rows)]
                    own = f"id-{number}-"
                    body = row.body.replace(">c1<", f">{own}<")
                    reply = self.server.post(soap.envelope(body, soap.header(token="t")),
                                             connection=connection)
                    self.assertRegex(reply.text, f"(refused |<deviceId>){own}<")

        with concurrent.futures.ThreadPoolExecutor(CONNECTIONS) as pool:
            list(pool.map(run, range(CONNECTIONS)))
        arrived = collections.Counter(request.hccId for request in self.array.take_requests())
        self.assertEqual(arrived, {f"id-{number}-": 1 for number in range(REQUESTS)})
