"""The Tandril library browser for scripts.

``tandril.Repository`` holds the repository's classes::

    from tandril import Repository
    repository = Repository.Repository.open()
    for product in repository.getProductsIterator():
        print(product.DisplayName)

The first repository call starts the library browser and its embedded host
with the settings of the environment (NUMORA_ROOT, NUMORA_PREFDIR,
NUMORA_PATH); call :func:`start` before it to choose them yourself.
Errors of scripted calls raise a subclass of :class:`Error` of their own
(:class:`StringTypeExpected`, :class:`Busy`...), whose ``identifier`` names
them; everything else that goes wrong is in the repository's report. Calls
come from the thread that started the package; from another they raise
:class:`WrongThread`.

``tandril.StandaloneBrowser`` steers the browser window::

    browser = tandril.StandaloneBrowser()
    browser.show()
    browser.searchForBlock("gain")
    print(browser.getResultsPageSectionNames())

A script can stand in for the host, wholly or in part, by registering Python
callables for host functions and operations with :func:`host_function`.
"""

import atexit
import sys

from ._tandril import Error, Repository, StandaloneBrowser, is_started, path, preferences_directory, root, start
from ._tandril import (BadArgument, Busy, CallsTooDeep, Destroyed, HostCallFailed, PairValueMismatch,
                       SessionEnded, StringTypeExpected, ValueTooDeep, WrongThread)
from ._tandril import call_host, register_host_function, registered_host_functions
from ._tandril import _finish, _tiles_created
from ._browser_enums import BlocksPageType, IconSize, LayoutType

__all__ = ["Error", "StringTypeExpected", "PairValueMismatch", "BadArgument", "Destroyed", "Busy", "WrongThread",
           "SessionEnded", "ValueTooDeep", "CallsTooDeep", "HostCallFailed", "Repository", "StandaloneBrowser",
           "LayoutType", "IconSize", "BlocksPageType", "start", "is_started", "root", "preferences_directory",
           "path", "register_host_function", "registered_host_functions", "host_function", "call_host"]


def host_function(name):
    """Registers the decorated callable for the host function or operation name
    (see :func:`register_host_function`) and leaves it as it is::

        @tandril.host_function("lb_getBlockData")
        def block_data(nargout, report, handle): ...
    """

    def register(function):
        register_host_function(name, function)
        return function

    return register

# "import tandril.Repository" and "from tandril.Repository import Block".
sys.modules[__name__ + ".Repository"] = Repository

atexit.register(_finish)

# The enums say where scripts find them.
for _value in (LayoutType, IconSize, BlocksPageType):
    _value.__module__ = __name__
del _value
