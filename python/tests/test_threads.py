"""Blocking calls let other Python threads run; the library's callbacks reach
Python safely."""
import sys
import threading
import time

import pytest

import kavro
from conftest import wait_for


def test_other_threads_run_while_a_call_waits_on_the_bus(bench):
    network, simulator = bench
    stamps = [0.0]  # when the other thread ran, every 10 ms or so
    running = threading.Event()
    done = threading.Event()

    def stamp():
        running.set()
        while not done.is_set():
            now = time.monotonic()
            if now - stamps[-1] > 0.01:
                stamps.append(now)

    other = threading.Thread(target=stamp)
    other.start()
    try:
        assert running.wait(5)
        simulator.delay("GP02000001", 0.5)
        started = time.monotonic()
        assert network.GetModule(0).ReadingInUnits() == pytest.approx(1.25)
        ended = time.monotonic()
    finally:
        done.set()
        other.join()
    assert ended - started >= 0.5
    # Holding the GIL through the call would have stopped the other thread.
    assert len([t for t in stamps if started + 0.1 < t < ended - 0.1]) > 10


def test_diagnostics_reach_a_python_handler_and_its_errors_are_contained(monkeypatch):
    lines = []
    unraisable = []
    monkeypatch.setattr(sys, "unraisablehook", unraisable.append)

    def handler(line):
        lines.append(line)
        if len(lines) == 1:
            raise ValueError("a handler that fails")

    kavro.set_diagnostic_handler(handler)
    try:
        # Nothing listens there: connecting fails and says so, without the GIL.
        with kavro.sim.Simulator("controller ethernet auto identity=ETHPY00009\n") as simulator:
            address = simulator.locations[0]
        network = kavro.KavroNetworkETHIM(0, "gone", address)
        network.Connect()
        assert not network.IsConnected()
    finally:
        kavro.set_diagnostic_handler(None)
    assert len(lines) >= 2, lines  # the handler went on after its first failure
    assert any("Unable to connect" in line for line in lines), lines
    assert [type(u.exc_value) for u in unraisable] == [ValueError]
