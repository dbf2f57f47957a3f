#!/usr/bin/env python3
"""Watches readings live: one line a round with every module's reading, until
Ctrl+C (or --rounds). On the simulated bus unless --address names a controller.

    PYTHONPATH=build/python python3 python/examples/watch.py
    PYTHONPATH=build/python python3 python/examples/watch.py --address 127.0.0.1 GP02000001 GP05000002
"""
import argparse
import contextlib
import sys
import time

import kavro

SCENARIO = """controller ethernet auto identity=ETHWATCH01 type=ETHI
module probe   GP02000001 range=2  signal=sine:1,0.6,4
module probe   GP05000002 range=5  signal=constant:2.5
module probe   GP10000003 range=10 signal=ramp:0,10,20
module encoder LE00000005 cpu=1000 signal=ramp:0,50,30
"""
SIMULATED = ["GP02000001", "GP05000002", "GP10000003", "LE00000005"]


def watch(network, rounds, interval):
    modules = list(network)
    print("  ".join(f"{m.ModuleID():>12}" for m in modules))
    units = "  ".join(f"{m.UnitsOfMeasure():>12}" for m in modules)
    print(units)
    done = 0
    while rounds == 0 or done < rounds:
        cells = []
        for module in modules:
            try:
                cells.append(f"{module.ReadingInUnits():12.4f}")
            except kavro.KavroError as error:
                cells.append(f"{getattr(error.code, 'name', error.code):>12}")
        print("  ".join(cells), flush=True)
        done += 1
        if rounds == 0 or done < rounds:
            time.sleep(interval)  # the pace of the display


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--address", help="an Ethernet controller's address (default: a simulated bus)")
    parser.add_argument("--rounds", type=int, default=0, help="stop after this many rounds (0: until Ctrl+C)")
    parser.add_argument("--interval", type=float, default=0.2, help="seconds between rounds")
    parser.add_argument("identities", nargs="*", help="modules to add by identity")
    arguments = parser.parse_args()

    with contextlib.ExitStack() as stack:
        address, identities = arguments.address, arguments.identities
        if address is None:
            address = stack.enter_context(kavro.sim.Simulator(SCENARIO)).locations[0]
            identities = identities or SIMULATED
        network = kavro.KavroNetworkETHIM(0, "watch", address)
        network.Connect()
        if not network.IsConnected():
            sys.exit(f"No controller answers at {address}.")
        stack.callback(network.Disconnect)
        for identity in identities:
            network.AddModule(identity)
        with contextlib.suppress(KeyboardInterrupt):
            watch(network, arguments.rounds, arguments.interval)


if __name__ == "__main__":
    main()
