#!/usr/bin/env python3
"""Lists the hand tools behind a wireless concentrator and reads their
channels. On the simulated bus unless --address names a controller.

    PYTHONPATH=build/python python3 python/examples/hand_tools.py
    PYTHONPATH=build/python python3 python/examples/hand_tools.py --address 127.0.0.1 WC00000007
"""
import argparse
import contextlib
import sys

import kavro

SCENARIO = """controller ethernet auto identity=ETHTOOLS01 type=ETH2
module wcm WC00000007 scan=2 restart=1
tool 1 WHT_M name="Bore gauge" identity=WHTM000001 battery=87 ch1=constant:12.002 text1="Bore A" ch2=constant:11.998 text2="Bore B"
tool 2 WHT name="Calliper" identity=WHT0000002 battery=64 ch1=constant:42.5 text1="Length"
tool 3 WMM_A name="Micrometer" identity=WMMA000003 connection=notconnected ch1=constant:25.4
"""


def show(wcm):
    for tool in wcm.Devices():
        if tool.DeviceType() is kavro.eWCM_DeviceType.None_:
            continue
        print(f"slot {tool.Index() + 1}: {tool.KavroIdentity()} {tool.DeviceType().name} "
              f"\"{tool.DeviceName()}\" {tool.ConnectionStatus().name} battery {tool.BatteryStatus()}%")
        try:
            for reading in tool.ReadAllChannels():
                print(f"  channel {reading.Channel}: {reading.Value:.4f} {reading.Unit.name} {reading.Error.name}")
        except RuntimeError as error:  # a tool out of reach is refused, not fatal
            print(f"  no readings: {error}")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--address", help="an Ethernet controller's address (default: a simulated bus)")
    parser.add_argument("identity", nargs="?", default="WC00000007", help="the concentrator's identity")
    arguments = parser.parse_args()

    with contextlib.ExitStack() as stack:
        address = arguments.address
        if address is None:
            address = stack.enter_context(kavro.sim.Simulator(SCENARIO)).locations[0]
        network = kavro.KavroNetworkETHIM(0, "tools", address)
        network.Connect()
        if not network.IsConnected():
            sys.exit(f"No controller answers at {address}.")
        stack.callback(network.Disconnect)
        network.AddModule(arguments.identity)
        wcm = network.GetModuleByID(arguments.identity)
        if not isinstance(wcm, kavro.KavroModuleWCM):
            sys.exit(f"{arguments.identity} is not a wireless concentrator.")
        show(wcm)


if __name__ == "__main__":
    main()
