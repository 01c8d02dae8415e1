"""findBlocks with option rows: the checks of the row, its messages, and the flags it sets."""

import re

import pytest

import tandril
from conftest import paths

PAIR_MESSAGE = "Expected a cell array of pairs (Option, Value)"
STRING_MESSAGE = "Expected a string argument."
PAIR = "Tandril:Repository:PairValueMismatch"
STRING = "Tandril:Repository:StringTypeExpected"


def option_message(name):
    return re.compile(r"Option %s is invalid\. Possible options are (\w+),(\w+),(\w+)\.$" % re.escape(name))


def value_message(value):
    return re.compile(r"Value %s is invalid\. Possible values are (\w+),(\w+)\.$" % re.escape(value))


def raised(call):
    with pytest.raises(tandril.Error) as info:
        call()
    return info.value.identifier, str(info.value)


@pytest.mark.parametrize(
    "row, identifier, message",
    [
        (["RegExp"], PAIR, PAIR_MESSAGE),
        # The count is checked before any name.
        (["Bogus", "on", "RegExp"], PAIR, PAIR_MESSAGE),
        (["RegExp", "on", "MatchCase"], PAIR, PAIR_MESSAGE),
        # A non-string is refused before the row is looked at at all.
        (["RegExp", 1], STRING, STRING_MESSAGE),
        (["RegExp"] + [1.5], STRING, STRING_MESSAGE),
        ([True, "on"], STRING, STRING_MESSAGE),
        (["RegExp", None], STRING, STRING_MESSAGE),
        (["RegExp", ["on"]], STRING, STRING_MESSAGE),
        ([1], STRING, STRING_MESSAGE),
    ],
)
def test_rows_that_fail_before_the_names_are_read(repository, row, identifier, message):
    obj = repository.getTandrilObject("kinetics")
    assert raised(lambda: repository.findBlocks("gain", row)) == (identifier, message)
    assert raised(lambda: repository.findBlocks("gain", obj, row)) == (identifier, message)


@pytest.mark.parametrize(
    "row, pattern",
    [
        (["Bogus", "on"], option_message("Bogus")),
        (["regexp", "on"], option_message("regexp")),
        (["RegExp", "on", "Bogus", "off"], option_message("Bogus")),
        (["RegExp", "ON"], value_message("ON")),
        (["MatchCase", ""], value_message("")),
        # The first fault is the one told.
        (["WholeWord", "yes", "Bogus", "on"], value_message("yes")),
    ],
)
def test_unknown_names_and_values_list_the_allowed_words(repository, row, pattern):
    identifier, message = raised(lambda: repository.findBlocks("gain", row))
    assert identifier == PAIR
    match = pattern.match(message)
    assert match, message
    allowed = set(match.groups())
    assert allowed in ({"RegExp", "WholeWord", "MatchCase"}, {"on", "off"})


def count(iterator):
    return int(iterator.size())


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
    assert count(repository.findBlocks(pattern, row)) == expected


def test_an_empty_row_is_all_options_off(repository):
    assert paths(repository.findBlocks("delay", [])) == paths(repository.findBlocks("delay"))
    kinetics = repository.getTandrilObject("kinetics")
    assert paths(repository.findBlocks("delay", kinetics, [])) == paths(repository.findBlocks("delay", kinetics))


@pytest.mark.parametrize("pattern", ["G.ar", "Gea", "^(Unit|Transport) Delay$", "Zähler|Relay"])
def test_below_an_object_whole_word_searches_as_a_regular_expression(repository, pattern):
    root = repository.getTandrilObject("kinetics")
    whole_word = paths(repository.findBlocks(pattern, root, ["WholeWord", "on"]))
    reg_exp = paths(repository.findBlocks(pattern, root, ["RegExp", "on"]))
    assert whole_word == reg_exp
    assert reg_exp


def test_whole_word_differs_between_the_two_forms(repository):
    root = repository.getTandrilObject("kinetics")
    assert paths(repository.findBlocks("Gea", ["WholeWord", "on"])) == []
    assert "kinetics/Mechanical/Rotational/Gear Trains" in paths(
        repository.findBlocks("Gea", root, ["WholeWord", "on"]))


def test_below_an_object_the_search_stays_below_it(repository):
    root = repository.getTandrilObject("kinetics/Discrete")
    found = paths(repository.findBlocks("delay", root, ["MatchCase", "off"]))
    assert found == ["kinetics/Discrete/Unit Delay"]
    assert paths(repository.findBlocks("^Unit", root, ["RegExp", "on", "MatchCase", "on"])) == found
