"""The wireless concentrator's hand tools through the bindings: slots, a
multi-channel read, settings of each kind and a refusal."""
import pytest

import kavro

SCENARIO = """controller ethernet auto identity=ETHPY00002 type=ETH2
module wcm WC00000007
tool 1 WHT_M identity=WHTM000001 ch1=constant:12.5 ch2=constant:11.25 enter=0.01
tool 2 WHT identity=WHT0000002 ch1=constant:3 enter=0.01
tool 3 WHT identity=WHT0000003 connection=notconnected
"""


@pytest.fixture
def wcm():
    with kavro.sim.Simulator(SCENARIO) as simulator:
        network = kavro.KavroNetworkETHIM(0, "bench", simulator.locations[0])
        network.Connect()
        network.AddModule("WC00000007")
        yield network, network.GetModule(0), simulator
        network.Disconnect()


def test_tools_channels_and_settings(wcm):
    network, module, simulator = wcm
    assert isinstance(module, kavro.KavroModuleWCM)
    devices = module.Devices()
    assert len(devices) == 6
    with pytest.raises(IndexError):
        devices[6]
    assert [d.KavroIdentity() for d in devices][:3] == ["WHTM000001", "WHT0000002", "WHT0000003"]
    multi = devices[0]
    assert multi.DeviceType() is kavro.eWCM_DeviceType.WHT_M
    readings = multi.ReadAllChannels()
    assert [(r.Channel, r.Error) for r in readings] == [(1, kavro.eKavroErrors.NoError), (2, kavro.eKavroErrors.NoError),
                                                         (3, kavro.eKavroErrors.NoError)]
    assert [r.Value for r in readings][:2] == pytest.approx([12.5, 11.25])
    assert multi.Read(2)[0].Value == pytest.approx(11.25)

    # Settings come as the tool kind's own class.
    settings = multi.Settings()
    assert isinstance(settings, kavro.WCM_DeviceSettings_WHTM)
    settings.setLED1Function(kavro.eWHT_M_LEDFunction.LowBatt)
    assert settings.LED1Function() is kavro.eWHT_M_LEDFunction.LowBatt
    single = devices[1].Settings()
    assert isinstance(single, kavro.WCM_DeviceSettings_WHT)
    upper = single.Limits().Upper()
    upper.setValue(2.5)
    upper.setEnabled(True)
    assert upper.Value() == pytest.approx(2.5)
    assert single.Limits().State() is kavro.eWCM_DeviceLimitState.Upper  # the tool reads 3

    # A slot whose tool changed kind has new settings; the old object refuses.
    simulator.set_tool("WC00000007", 1, "WHT")
    assert multi.getDeviceType() is kavro.eWCM_DeviceType.WHT
    with pytest.raises(RuntimeError, match="has changed"):
        settings.OffTime()
    assert isinstance(multi.Settings(), kavro.WCM_DeviceSettings_WHT)

    # A tool that is not connected refuses with the library's message.
    with pytest.raises(RuntimeError, match="Unable to get reading"):
        devices[2].ReadAllChannels()

    # Every part refuses once its concentrator has left the network.
    network.ClearModules()
    for call in (devices.DeviceCount, multi.KavroIdentity, multi.Settings, single.Limits):
        with pytest.raises(RuntimeError, match="no longer on its network"):
            call()
