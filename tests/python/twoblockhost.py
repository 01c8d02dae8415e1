"""A Python program as the host: one product "Duo" of two blocks, served by
callables for the five repository operations, from a root that holds no
tdblocks data of its own."""

import os

import tandril

SVG = b'<svg xmlns="http://www.w3.org/2000/svg" width="40" height="30"><rect width="40" height="30"/></svg>'
BLOCKS = {1.0: ("Alpha", "The first of two."), 2.0: ("Beta", "The second of two.")}
OPERATIONS = ["lb_getTdBlocksData", "lb_getLibraryData", "lb_getChildrenHandles", "lb_getBlockData",
              "lb_createSubSystemIcons"]


def make_root(directory):
    """A root with the library's one file; only Python announces it."""
    root = directory / "root"
    (root / "duo").mkdir(parents=True)
    (root / "duo" / "duo.lib").write_text("two blocks, served from Python\n")
    return root


class TwoBlockHost:
    """The repository operations for "Duo"; calls and reports are noted."""

    def __init__(self, root):
        self.root = root
        self.calls = []
        self.reports = []

    def register(self):
        for name in OPERATIONS:
            tandril.register_host_function(name, getattr(self, name))

    @staticmethod
    def unregister_all():
        for name in list(tandril.registered_host_functions()):
            tandril.register_host_function(name, None)

    def note(self, name, report):
        self.calls.append(name)
        self.reports.append(report)

    def lb_getTdBlocksData(self, nargout, report, path):
        self.note("lb_getTdBlocksData", report)
        assert nargout == 9
        return [["Duo"], ["duo"], ["duo"], [0.0], ["duo/duo.lib"], ["duo/duo.lib"], ["Product"], [[]],
                [["duo/duo.lib"]]]

    def lb_getLibraryData(self, nargout, report, path):
        self.note("lb_getLibraryData", report)
        info = os.stat(self.root / "duo" / "duo.lib")
        return (["duo/duo.lib"], float(info.st_size), float(int(info.st_mtime)))

    def lb_getChildrenHandles(self, nargout, report, parent):
        self.note("lb_getChildrenHandles", report)
        if parent != "duo":
            raise LookupError("no children below %r" % (parent,))
        return [sorted(BLOCKS)]

    def lb_getBlockData(self, nargout, report, handle):
        self.note("lb_getBlockData", report)
        name, description = BLOCKS[handle]
        report.log("served %s from Python" % name)
        return [name, description, [0.0, 0.0, 40.0, 30.0], "Block", "", ""]

    def lb_createSubSystemIcons(self, nargout, report, parent, children, files):
        self.note("lb_createSubSystemIcons", report)
        assert parent == "duo" and children == ["duo/Alpha", "duo/Beta"]
        for file in files:
            os.makedirs(os.path.dirname(file), exist_ok=True)
            with open(file, "wb") as out:
                out.write(SVG)
