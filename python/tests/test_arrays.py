"""Buffered read-outs come back as one numpy record array per call."""
import numpy as np
import pytest

import kavro
from conftest import wait_for


def test_sample_run_gives_one_record_per_trigger(bench):
    network, simulator = bench
    probe = network.GetModuleByID("GP02000001")  # 2 mm, 14 bits
    idle = network.GetModuleByID("GP05000002")
    probe.Buffered().setMode(kavro.eBufferedMode.Sample)
    probe.Buffered().setEnabled(True)
    network.Buffered().Start()
    cases = [  # signal, counts, value, error (the other range cases: BufferedMode.SampleRun in C++)
        (0.5, 4096, 0.5, kavro.eKavroErrors.NoError),
        (-0.1, 0, 0.0, kavro.eKavroErrors.UnderRange),
    ]
    for signal, *_ in cases:
        simulator.set_signal("GP02000001", f"constant:{signal}")
        before = simulator.requests("GP02000001")
        network.Buffered().Sample()
        # The trigger has no answer: wait until the bus has carried it.
        assert wait_for(lambda: simulator.requests("GP02000001") > before)
    assert simulator.buffered_held("GP02000001") == len(cases)
    network.Buffered().Stop()

    readings = probe.Buffered().GetBufferedDataArray()
    assert readings.dtype == np.dtype([("error", "<i4"), ("counts", "<i4"), ("value", "<f8")])
    assert readings.shape == (len(cases),)
    assert readings["counts"].tolist() == [c[1] for c in cases]
    assert readings["value"] == pytest.approx([c[2] for c in cases])
    assert readings["error"].tolist() == [c[3] for c in cases]
    assert idle.Buffered().GetBufferedDataArray().shape == (0,)


def test_dynamic_run_gives_sets_by_probes(bench):
    network, _ = bench
    network.setNetSpeed(kavro.eNetSpeed.High)
    dynamic = network.Dynamic()
    dynamic.setNumberOfModules(2)
    dynamic.setCollectionSize(500)
    dynamic.setEnabled(True)
    dynamic.Prepare()
    dynamic.StartDynamic()
    assert wait_for(lambda: dynamic.DynamicState() == kavro.eDynamicState.Complete)
    dynamic.StopDynamic()

    data = dynamic.DynamicData()
    readings = data.readings()
    assert readings.dtype == np.dtype([("error", "<i4"), ("counts", "<i4"), ("value", "<f8")])
    assert readings.shape == (500, 2)
    assert readings["value"][:, 0] == pytest.approx(1.25, abs=1e-3)
    assert readings["value"][:, 1] == pytest.approx(2.5, abs=1e-3)
    assert (readings["error"] == kavro.eKavroErrors.NoError).all()
    tail = data.readings(module=1, first=490)
    assert tail.shape == (10,) and tail["counts"].tolist() == readings["counts"][490:, 1].tolist()
    assert dynamic.Health()["reading_sets"] == 500 and not dynamic.Health()["data_lost"]
    with pytest.raises(IndexError):
        data.readings(module=2)
