"""Networks of digital measurement modules, from Python.

The classes and enumerations of libKavroLibrary under their C++ names:

    import kavro
    server = kavro.KavroServer()
    networks = server.Networks()
    networks.FindNetworks()
    networks.ConnectAll()

Library errors raise kavro.KavroError (code, text); buffered read-outs and
dynamic data come back as numpy arrays; kavro.sim runs a simulated bus in
this process.
"""
from ._kavro import *  # noqa: F401,F403
from ._kavro import __doc__ as _extension_doc  # noqa: F401
from . import sim  # noqa: F401
