"""The example scripts run on the simulated bus and show what they say."""
import pathlib
import subprocess
import sys

EXAMPLES = pathlib.Path(__file__).resolve().parent.parent / "examples"


def run(script, *arguments):
    return subprocess.run([sys.executable, str(EXAMPLES / script), *arguments],
                          capture_output=True, text=True, timeout=120, check=True).stdout


def test_plot_stream_writes_a_png_of_four_probes(tmp_path):
    png = tmp_path / "stream.png"
    lines = run("plot_stream.py", str(png)).splitlines()
    assert png.read_bytes()[:8] == b"\x89PNG\r\n\x1a\n"
    probes = [line.split() for line in lines if line.startswith("GP")]
    assert [p[0] for p in probes] == ["GP02000001", "GP05000002", "GP10000003", "GP01000004"]
    assert all(int(p[1]) == 4000 for p in probes), probes
    assert "nothing lost" in lines[-2], lines


def test_watch_prints_a_row_of_readings_a_round():
    lines = run("watch.py", "--rounds", "3", "--interval", "0").splitlines()
    assert lines[0].split() == ["GP02000001", "GP05000002", "GP10000003", "LE00000005"]
    rows = [[float(cell) for cell in line.split()] for line in lines[2:]]
    assert len(rows) == 3 and all(len(row) == 4 and row[1] == 2.5 for row in rows), lines


def test_hand_tools_lists_tools_and_reads_their_channels():
    lines = run("hand_tools.py").splitlines()
    assert [line.split()[2] for line in lines if line.startswith("slot")] == ["WHTM000001", "WHT0000002", "WMMA000003"]
    channels = [line.split()[2] for line in lines if line.strip().startswith("channel")]
    assert channels[:2] == ["12.0020", "11.9980"] and channels[-1] == "42.5000", lines
    assert lines[-1].strip().startswith("no readings: Unable to get reading"), lines
