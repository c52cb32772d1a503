"""The simulated bench through PyVISA's own IVI back end, as any script would use it."""

import os
import tempfile

import pyvisa

LIBRARY = os.environ["BENCH_LIBRARY"]


def use_a_laboratory_of_our_own(test_case):
    """Share the bench with nobody but the processes that this one starts."""
    directory = tempfile.TemporaryDirectory()
    test_case.addClassCleanup(directory.cleanup)
    os.environ["XDG_RUNTIME_DIR"] = directory.name


def resource_manager():
    return pyvisa.ResourceManager(LIBRARY + "@ivi")


def open_instrument(manager, host, **attributes):
    return manager.open_resource(f"TCPIP0::{host}::INSTR", **attributes)
