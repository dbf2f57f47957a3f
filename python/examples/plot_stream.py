#!/usr/bin/env python3
"""Streams four probes at 4 kHz for a second in dynamic mode on the simulated
bus and plots them into a PNG.

    PYTHONPATH=build/python python3 python/examples/plot_stream.py [out.png]
"""
import sys
import threading

import matplotlib

matplotlib.use("Agg")  # a file, no window
import matplotlib.pyplot as plt  # noqa: E402
import numpy as np  # noqa: E402

import kavro  # noqa: E402

# Four probes on a streaming ("ETH2") controller, each with a signal of its own.
SCENARIO = """controller ethernet auto identity=ETHPLOT001 type=ETH2
module probe GP02000001 range=2  signal=sine:1,0.6,0.25
module probe GP05000002 range=5  signal=constant:2.5
module probe GP10000003 range=10 signal=ramp:0,10,0.5
module probe GP01000004 range=1  signal=noise:0.5,0.02,42
"""
IDENTITIES = ["GP02000001", "GP05000002", "GP10000003", "GP01000004"]
RATE_HZ = 4000
SECONDS = 1.0


def main(output="stream.png"):
    with kavro.sim.Simulator(SCENARIO) as simulator:
        network = kavro.KavroNetworkETHIM(0, "plot", simulator.locations[0])
        network.Connect()
        if not network.IsConnected():
            sys.exit("No controller answers on the simulated bus.")
        for identity in IDENTITIES:
            network.AddModule(identity)
        network.setNetSpeed(kavro.eNetSpeed.High)  # 1, 2 and 4 kHz run at the High bus speed

        dynamic = network.Dynamic()
        dynamic.setNumberOfModules(len(IDENTITIES))
        dynamic.setDynamicRate(kavro.eDynamicRate.Rate4K)
        dynamic.setCollectionSize(int(RATE_HZ * SECONDS))
        dynamic.setEnabled(True)
        dynamic.Prepare()
        done = threading.Event()
        dynamic.StartDynamic(lambda network_number: done.set())  # called from the library's thread
        if not done.wait(30):
            sys.exit("The run did not complete.")
        dynamic.StopDynamic()
        readings = dynamic.DynamicData().readings()  # reading sets by probes
        health = dynamic.Health()
        network.Disconnect()

    seconds = np.arange(len(readings)) / RATE_HZ
    figure, axes = plt.subplots(len(IDENTITIES), 1, sharex=True, figsize=(10, 8))
    for column, (axis, identity) in enumerate(zip(axes, IDENTITIES)):
        values = readings["value"][:, column]
        axis.plot(seconds, values, linewidth=0.8)
        axis.set_ylabel(f"{identity}\nmm")
        axis.grid(True, alpha=0.3)
        print(f"{identity}  {len(values)} readings, {values.min():.4f} to {values.max():.4f} mm")
    axes[-1].set_xlabel("seconds")
    figure.suptitle(f"Four probes streamed at {RATE_HZ} Hz on the simulated bus")
    figure.tight_layout()
    figure.savefig(output, dpi=100)
    lost = "readings lost" if health["data_lost"] else "nothing lost"
    print(f"{health['packets']} packets, {health['packets_asked_again']} asked again, {lost}")
    print(f"wrote {output}")


if __name__ == "__main__":
    main(*sys.argv[1:2])
