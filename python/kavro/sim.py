"""The simulated bus in this process: Simulator(scenario_text) or
Simulator.from_file(path); see docs/simulator.md for the scenario format."""
from ._kavro import sim as _sim

Simulator = _sim.Simulator
ScenarioError = _sim.ScenarioError
