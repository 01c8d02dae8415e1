"""The enum types of tandril.StandaloneBrowser.

A member is its scripted word: it compares equal to the word's text, so that
``browser.getLayoutType() == "GRID"`` holds, and ``int()`` gives its number.
Making a member from its word or its number both work:
``LayoutType("GRID") is LayoutType(1) is LayoutType.GRID``.
"""

import enum


class _ScriptedWord(str, enum.Enum):

    def __new__(cls, word, number):
        member = str.__new__(cls, word)
        member._value_ = word
        member.number = number
        return member

    @classmethod
    def _missing_(cls, value):
        # A bool is an int to Python, but no number of a word.
        if isinstance(value, int) and not isinstance(value, bool):
            for member in cls:
                if member.number == value:
                    return member
        return None

    def __int__(self):
        return self.number

    def __str__(self):
        return self.value

    def __format__(self, spec):
        return format(self.value, spec)


class LayoutType(_ScriptedWord):
    """How a page lays out its tiles."""

    LIST = ("LIST", 0)
    GRID = ("GRID", 1)


class IconSize(_ScriptedWord):
    """The size of the tiles' icons."""

    COMPACT = ("COMPACT", 0)
    SMALL = ("SMALL", 1)
    MEDIUM = ("MEDIUM", 2)
    LARGE = ("LARGE", 3)


class BlocksPageType(_ScriptedWord):
    """The kind of a page of the window: the library's blocks or a search's results."""

    LIBRARY_PANEL = ("LIBRARY_PANEL", 0)
    RESULTS_PANEL = ("RESULTS_PANEL", 1)
