"""The repository from scripts, as far as the binding goes: option rows, the ranked search, mode words, the report."""

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


def test_hits_carry_their_block_runs_and_boosts(repository):
    ranker = Repository.BlockRanker(repository)
    first = ranker.rank("controller pid")[0]
    assert (first.block.Path, first.spans) == (PID, [(0, 3), (4, 10)])
    hits = ranker.rank("wave", limit=0)
    assert len(hits) == ranker.count("wave") > 3
    assert paths(h.block for h in ranker.rank("wave", limit=2)) == paths(h.block for h in hits[:2])
    last = hits[-1].block.Path
    listed = ranker.rank("", favourites={last}, recents=[PID, "no/such/block"])
    assert [(h.block.Path, h.favourite, h.recent) for h in listed] == [(last, True, False), (PID, False, True)]


def test_mode_words_of_the_generating_verbs(tmp_path, root_dir):
    writer = Repository.Writer.open(str(tmp_path / "store"), [str(root_dir / "toolbox" / "arithmetica")])
    writer.generateRepository()
    reader = Repository.Reader.open(str(tmp_path / "store"))
    report = writer.getRepositoryReport()
    for verb, word, up_to_date in [("generateProduct", "Minimal", True), ("generateProduct", "IgnoreTimestamp", True),
                                   ("generateProduct", "regenerate", True), ("generateProduct", "", True),
                                   ("generateProduct", "Regenerate", False), ("generateRepository", "regenerate", True),
                                   ("generateRepository", "Regenerate", False)]:  # Any other word is mode 0.
        before = len(report.getLog())
        getattr(writer, verb)(*((reader.getProduct("arithmetica"), word) if verb == "generateProduct" else (word,)))
        lines = report.getLog()[before:]
        assert any("Processing product Arithmetica" in line for line in lines), (verb, word, lines)
        assert any("Product is up-to-date!" in line for line in lines) == up_to_date, (verb, word, lines)
        assert not report.hasError() and reader.isProductUpToDate(reader.getProduct("arithmetica")), lines


def test_the_report_keeps_what_it_is_told_and_a_missing_file_has_no_checksum(capfd, tmp_path):
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
    assert Repository.Util.computeCheckSum(str(tmp_path / "missing"), report) == "" and len(report.getErrors()) == 3
