"""findBlocks with option rows: the checks of the row, its messages, and the flags it sets."""

import re

import pytest

import tandril
from conftest import paths

PAIRS = ("Tandril:Repository:PairValueMismatch", "Expected a cell array of pairs (Option, Value)")
STRING = ("Tandril:Repository:StringTypeExpected", "Expected a string argument.")
# The allowed words are listed in no fixed order.
OPTIONS = r"Option {} is invalid\. Possible options are (\w+),(\w+),(\w+)\.$"
VALUES = r"Value {} is invalid\. Possible values are (\w+),(\w+)\.$"


@pytest.mark.parametrize(
    "row, fault, message",
    [
        # The count is checked before any name, a non-string before the row is looked at at all.
        (["RegExp"], PAIRS, None),
        (["Bogus", "on", "RegExp"], PAIRS, None),
        (["RegExp", 1], STRING, None),
        ([True, "on"], STRING, None),
        (["RegExp", None], STRING, None),
        (["RegExp", ["on"]], STRING, None),
        ([1], STRING, None),
        (["Bogus", "on"], PAIRS, OPTIONS.format("Bogus")),
        (["regexp", "on"], PAIRS, OPTIONS.format("regexp")),
        (["RegExp", "on", "Bogus", "off"], PAIRS, OPTIONS.format("Bogus")),
        (["RegExp", "ON"], PAIRS, VALUES.format("ON")),
        (["MatchCase", ""], PAIRS, VALUES.format("")),
        # The first fault is the one told.
        (["WholeWord", "yes", "Bogus", "on"], PAIRS, VALUES.format("yes")),
    ],
)
def test_faulty_rows_are_refused_with_their_identifier_and_message(repository, row, fault, message):
    kinetics = repository.getTandrilObject("kinetics")
    for call in (lambda: repository.findBlocks("gain", row), lambda: repository.findBlocks("gain", kinetics, row)):
        with pytest.raises(tandril.Error) as info:
            call()
        assert info.value.identifier == fault[0]
        if message is None:
            assert str(info.value) == fault[1]
            continue
        match = re.match(message, str(info.value))
        assert match and set(match.groups()) in ({"RegExp", "WholeWord", "MatchCase"}, {"on", "off"}), str(info.value)


@pytest.mark.parametrize(
    "pattern, row, expected",
    [
        ("gain", [], 4),
        ("GAIN", ["MatchCase", "off"], 4),
        ("GAIN", ["MatchCase", "on"], 0),
        ("Gain", ["MatchCase", "on"], 4),
        ("G.in", [], 0),
        ("G.in", ["RegExp", "on"], 4),
        # The last pair of a name wins.
        ("G.in", ["RegExp", "on", "RegExp", "off"], 0),
        ("G.in", ["RegExp", "off", "RegExp", "on"], 4),
        ("Gai", [], 4),
        ("Gai", ["WholeWord", "on"], 0),
        ("gain", ["WholeWord", "on"], 4),
        ("Gai", ["WholeWord", "on", "RegExp", "on", "WholeWord", "off"], 4),
    ],
)
def test_rows_set_the_flags_of_a_search_over_the_repository(repository, pattern, row, expected):
    assert repository.findBlocks(pattern, row).size() == expected


@pytest.mark.parametrize("pattern", ["G.ar", "Gea", "^(Unit|Transport) Delay$", "Zähler|Relay"])
def test_below_an_object_whole_word_searches_as_a_regular_expression(repository, pattern):
    root = repository.getTandrilObject("kinetics")
    whole_word = paths(repository.findBlocks(pattern, root, ["WholeWord", "on"]))
    assert whole_word == paths(repository.findBlocks(pattern, root, ["RegExp", "on"])) != []


def test_below_an_object_the_search_stays_below_it_and_an_empty_row_is_all_off(repository):
    assert paths(repository.findBlocks("Gea", ["WholeWord", "on"])) == []
    discrete = repository.getTandrilObject("kinetics/Discrete")
    found = paths(repository.findBlocks("delay", discrete, ["MatchCase", "off"]))
    assert found == ["kinetics/Discrete/Unit Delay"] == paths(repository.findBlocks("delay", discrete, []))
    assert paths(repository.findBlocks("^Unit", discrete, ["RegExp", "on", "MatchCase", "on"])) == found
    assert paths(repository.findBlocks("delay", [])) == paths(repository.findBlocks("delay"))
