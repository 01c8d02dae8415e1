"""The repository from scripts: option rows, the ranked search, mode words, the report and the checksum, as far
as the binding goes (what they compute is the C++ suites')."""

import hashlib

import pytest

from conftest import paths
from tandril import Repository

PID = "kinetics/Continuous/PID Controller"


@pytest.mark.parametrize("pattern, row, expected", [
    ("gain", [], 4), ("GAIN", ["MatchCase", "off"], 4), ("GAIN", ["MatchCase", "on"], 0),
    ("Gain", ["MatchCase", "on"], 4), ("G.in", [], 0), ("G.in", ("RegExp", "on"), 4),
    # The last pair of a name wins.
    ("G.in", ["RegExp", "on", "RegExp", "off"], 0), ("G.in", ["RegExp", "off", "RegExp", "on"], 4),
    ("Gai", [], 4), ("Gai", ["WholeWord", "on"], 0), ("gain", ["WholeWord", "on"], 4),
    ("Gai", ["WholeWord", "on", "RegExp", "on", "WholeWord", "off"], 4),
])
def test_rows_set_the_flags_of_a_search_over_the_repository(repository, pattern, row, expected):
    assert repository.findBlocks(pattern, row).size() == expected


def test_below_an_object_whole_word_is_a_regular_expression_and_the_search_stays_below_it(repository):
    root = repository.getTandrilObject("kinetics")
    for pattern in ["G.ar", "Gea", "^(Unit|Transport) Delay$", "Zähler|Relay"]:
        whole_word = paths(repository.findBlocks(pattern, root, ["WholeWord", "on"]))
        assert whole_word == paths(repository.findBlocks(pattern, root, ["RegExp", "on"])) != [], pattern
    assert paths(repository.findBlocks("Gea", ["WholeWord", "on"])) == []
    discrete = repository.getTandrilObject("kinetics/Discrete")
    found = paths(repository.findBlocks("delay", discrete, ["MatchCase", "off"]))
    assert found == ["kinetics/Discrete/Unit Delay"] == paths(repository.findBlocks("delay", discrete, []))
    assert paths(repository.findBlocks("^Unit", discrete, ["RegExp", "on", "MatchCase", "on"])) == found
    assert paths(repository.findBlocks("delay", [])) == paths(repository.findBlocks("delay"))


def test_hits_carry_their_block_runs_and_boosts(repository):
    ranker = Repository.BlockRanker(repository)
    first = ranker.rank("controller pid")[0]
    assert (first.block.Path, first.spans) == (PID, [(0, 3), (4, 10)])
    hits = ranker.rank("wave", limit=0)
    assert len(hits) == ranker.count("wave") > 3
    assert paths(h.block for h in ranker.rank("wave", limit=2)) == paths(h.block for h in hits[:2])
    last = hits[-1].block.Path
    boosted = ranker.rank("wave", limit=0, favourites=[last])
    assert next(h for h in boosted if h.block.Path == last).score > hits[-1].score
    listed = ranker.rank("", favourites={last}, recents=[PID, "no/such/block"])
    assert [(h.block.Path, h.favourite, h.recent) for h in listed] == [(last, True, False), (PID, False, True)]


def test_mode_words_of_the_generating_verbs(tmp_path, root_dir):
    writer = Repository.Writer.open(str(tmp_path / "store"), [str(root_dir / "toolbox" / "arithmetica")])
    writer.generateRepository()
    reader = Repository.Reader.open(str(tmp_path / "store"))
    report = writer.getRepositoryReport()
    # Any word but Regenerate is mode 0 without an error, "regenerate" too.
    for verb, word, up_to_date in [("generateProduct", "Minimal", True), ("generateProduct", "IgnoreTimestamp", True),
                                   ("generateProduct", "regenerate", True), ("generateProduct", "", True),
                                   ("generateProduct", "Regenerate", False), ("generateRepository", "regenerate", True),
                                   ("generateRepository", "Regenerate", False)]:
        before = len(report.getLog())
        getattr(writer, verb)(*((reader.getProduct("arithmetica"), word) if verb == "generateProduct" else (word,)))
        lines = report.getLog()[before:]
        assert any("Processing product Arithmetica" in line for line in lines), (verb, word, lines)
        assert any("Product is up-to-date!" in line for line in lines) == up_to_date, (verb, word, lines)
        assert not report.hasError() and reader.isProductUpToDate(reader.getProduct("arithmetica")), lines


def test_the_report_keeps_what_it_is_told_and_the_checksum_of_a_file(capfd, tmp_path):
    report = Repository.RepositoryReport.create()
    report.log("first line")
    report.logWarning("careful")
    report.logWarning("Test:Warning", "with an id")
    report.logError("Test:Error", "it broke")
    report.logError("no id")
    assert report.getWarnings() == [("InternalWarning", "careful"), ("Test:Warning", "with an id")]
    assert report.getErrors() == [("Test:Error", "it broke"), ("InternalError", "no id")]
    assert "Action: first line\n" in "".join(report.getLog())
    for echo, line in ((True, "echoed"), (False, "quiet")):
        report.logToConsoleInteractively(echo)
        report.log(line)
        assert (line in capfd.readouterr().out) == echo

    data = tmp_path / "model.tdlib.json"
    data.write_bytes(b"{\"blocks\": []}\n")
    report = Repository.RepositoryReport.create()
    expected = "".join(str(b) for b in hashlib.md5(data.read_bytes()).digest())
    assert Repository.Util.computeCheckSum(str(data), report) == expected and not report.hasError()
    assert Repository.Util.computeCheckSum(str(tmp_path / "missing"), report) == "" and report.hasError()
