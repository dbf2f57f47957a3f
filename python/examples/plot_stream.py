#!/usr/bin/env python3
"""Streams four probes at 4 kHz for a second on the simulated bus and plots
them into a PNG.

    PYTHONPATH=build/python python3 python/examples/plot_stream.py [out.png]
"""
import sys
import time

import matplotlib

matplotlib.use("Agg")  # a file, no window
import matplotlib.pyplot as plt  # noqa: E402
import numpy as np  # noqa: E402

import kavro  # noqa: E402

# The four probes of kavro-sim's default scenario, faster.
SCENARIO = """controller ethernet auto identity=ETHPLOT001 type=ETHI
module probe GP02000001 range=2  signal=sine:1,0.6,0.25
module probe GP05000002 range=5  signal=constant:2.5
module probe GP10000003 range=10 signal=ramp:0,10,0.5
module probe GP01000004 range=1  signal=noise:0.5,0.02,42
"""
RATE_HZ = 4000
SECONDS = 1.0


def main(output="stream.png"):
    with kavro.sim.Simulator(SCENARIO) as simulator:
        network = kavro.KavroNetworkETHIM(0, "plot", simulator.locations[0])
        network.Connect()
        if not network.IsConnected():
            sys.exit("No controller answers on the simulated bus.")
        identities = ["GP02000001", "GP05000002", "GP10000003", "GP01000004"]
        for identity in identities:
            network.AddModule(identity)
        for probe in network:
            probe.Buffered().setMode(kavro.eBufferedMode.Sync)
            probe.Buffered().setReadingInterval(1_000_000 // RATE_HZ)
            probe.Buffered().setEnabled(True)

        network.Buffered().Start()
        time.sleep(SECONDS)  # the probes buffer on their own meanwhile
        network.Buffered().Stop()
        readings = {probe.ModuleID(): probe.Buffered().GetBufferedDataArray() for probe in network}
        interval = network.GetModule(0).Buffered().ReadingInterval() / 1e6
        network.Disconnect()

    figure, axes = plt.subplots(len(readings), 1, sharex=True, figsize=(10, 8))
    for axis, (identity, data) in zip(axes, readings.items()):
        seconds = np.arange(len(data)) * interval
        axis.plot(seconds, data["value"], linewidth=0.8)
        axis.set_ylabel(f"{identity}\nmm")
        axis.grid(True, alpha=0.3)
        print(f"{identity}  {len(data)} readings, {data['value'].min():.4f} to {data['value'].max():.4f} mm")
    axes[-1].set_xlabel("seconds")
    figure.suptitle(f"Four probes at {1 / interval:.0f} Hz on the simulated bus")
    figure.tight_layout()
    figure.savefig(output, dpi=100)
    print(f"wrote {output}")


if __name__ == "__main__":
    main(*sys.argv[1:2])
