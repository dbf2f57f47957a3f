"""The bindings end to end on the simulated bus: calls reach the library and
its answers come back as the right Python values."""
import enum

import pytest

import kavro
from conftest import wait_for


def test_every_enumeration_is_an_int_enum_with_the_library_texts():
    enums = [value for name, value in vars(kavro).items() if name.startswith("e") and isinstance(value, type)]
    assert len(enums) > 40
    for cls in enums:
        assert issubclass(cls, enum.IntEnum), cls
        for member in cls:
            assert cls.from_text(member.text) is member, (cls, member)
    assert kavro.eBufferedMode.None_ is kavro.eBufferedMode["None"]


def test_network_and_modules_round_trip(bench):
    network, _ = bench
    assert (network.NetworkType(), network.ControllerID(), len(network)) == (kavro.eNetworkType.ETHIM2, "ETHPY00001", 3)
    assert kavro.eNetSpeed.High in network.AvailableSpeeds()
    network.setNetSpeed(kavro.eNetSpeed.High)
    assert network.NetSpeed() is kavro.eNetSpeed.High

    probe = network.GetModuleByID("GP05000002")
    assert isinstance(probe, kavro.KavroModuleDP)
    assert (probe.ModuleType(), probe.Address(), probe.Stroke()) == (kavro.eModuleType.DP, 2, 5.0)
    assert probe.ReadingInUnits() == pytest.approx(2.5)
    assert probe.ReadingInCounts() == 1 << 15  # mid-range of 16 bits
    assert [m.ModuleID() for m in network] == ["GP02000001", "GP05000002", "GP10000003"]


def test_settings_file_round_trip(bench, tmp_path):
    network, _ = bench
    network.GetModule(0).setModuleName("left flank")
    network.GetModule(1).setResolution(kavro.eResolution.res18Bit)
    path = str(tmp_path / "bench.xml")
    network.Save(path)
    first, its_difference = network.GetModule(0), network.GetModule(0).Difference()
    network.ClearModules()
    assert len(network) == 0
    # Objects of modules that are gone refuse instead of touching freed memory.
    for call in (first.ReadingInUnits, first.ModuleID, its_difference.Max):
        with pytest.raises(RuntimeError, match="GP02000001 is no longer on its network"):
            call()
    network.Load(path)
    assert [m.ModuleID() for m in network] == ["GP02000001", "GP05000002", "GP10000003"]
    assert network.GetModule(0).ModuleName() == "left flank"
    assert network.GetModule(1).Resolution() is kavro.eResolution.res18Bit


def test_difference_mode_keeps_the_bounds_of_a_moving_probe(bench):
    network, simulator = bench
    simulator.set_signal("GP02000001", "sine:1,0.5,0.1")
    difference = network.GetModuleByID("GP02000001").Difference()
    difference.setEnabled(True)
    network.Difference().Start()

    def swept():
        difference.ReadDifference()  # interim results while it runs
        return difference.Min() < 0.51 and difference.Max() > 1.49

    assert wait_for(swept, bound=20), (difference.Min(), difference.Max())
    network.Difference().Stop()
    assert network.Difference().Status() is kavro.eDifferenceModeStatus.Stopped
    assert (difference.Min(), difference.Max()) == (pytest.approx(0.5, abs=0.02), pytest.approx(1.5, abs=0.02))
    assert difference.Diff() == pytest.approx(difference.Max() - difference.Min())


def test_errors_map_to_python_exceptions(bench):
    network, simulator = bench
    probe = network.GetModule(0)
    simulator.error_reply("GP02000001", 0x03)
    with pytest.raises(kavro.KavroError) as raised:
        probe.ReadingInCounts()
    assert raised.value.code is kavro.eKavroErrors.NO_CMD
    assert raised.value.text == kavro.KavroServer().GetErrorDescription(0x2103)
    assert isinstance(raised.value, RuntimeError)
    # The library's own rules stay RuntimeError, with its message.
    with pytest.raises(RuntimeError, match="GP99999999"):
        network.AddModule("GP99999999")
    with pytest.raises(IndexError):
        network[3]
    with pytest.raises(TypeError):
        network.setNetSpeed(3)  # no eNetSpeed member has the value 3
    with pytest.raises(kavro.sim.ScenarioError, match="scenario:1"):
        kavro.sim.Simulator("controller nowhere\n")


def test_usb_controllers_are_found_through_the_stand_in(tmp_path, monkeypatch):
    monkeypatch.setenv("HOME", str(tmp_path))  # no controller configuration files
    scenario = "controller usb identity=USBPY00001\nmodule probe GP02000021 range=2 signal=constant:0.75\n"
    with kavro.sim.Simulator(scenario) as simulator:
        assert (simulator.usb_controllers, simulator.locations) == (1, [])
        server = kavro.KavroServer()
        networks = server.Networks()
        networks.FindNetworks()
        assert len(networks) == 1
        network = networks[0]
        network.Connect()
        network.AddModule("GP02000021")
        probe = network[0]
        assert (network.NetworkType(), probe.ReadingInUnits()) == (kavro.eNetworkType.USBIM_Mk2, 0.75)
        networks.DisconnectAll()
        networks.FindNetworks()  # a new network object for the same controller
        assert len(networks) == 1
        for call in (network.ModuleCount, probe.ModuleID, network.Buffered):
            with pytest.raises(RuntimeError, match="no longer"):
                call()
