"""Shared helpers: a simulated Ethernet bench and a bounded wait."""
import time

import pytest

import kavro

BENCH = """controller ethernet auto identity=ETHPY00001 type=ETH2
module probe GP02000001 range=2 signal=constant:1.25
module probe GP05000002 range=5 resolution=16 signal=constant:2.5
module probe GP10000003 range=10 signal=ramp:0,10,2
"""


def wait_for(condition, bound=10.0):
    """True once condition() holds, False when `bound` seconds pass first."""
    deadline = time.monotonic() + bound
    while not condition():
        if time.monotonic() > deadline:
            return False
        time.sleep(0.001)
    return True


@pytest.fixture
def bench():
    """A connected network with the three probes of BENCH, and its simulator."""
    with kavro.sim.Simulator(BENCH) as simulator:
        network = kavro.KavroNetworkETHIM(0, "bench", simulator.locations[0])
        network.Connect()
        assert network.IsConnected()
        for identity in ("GP02000001", "GP05000002", "GP10000003"):
            network.AddModule(identity)
        yield network, simulator
        network.Disconnect()
