"""Generating verbs, their mode words, the report and the checksum utility."""

import hashlib

import pytest

import tandril
from tandril import Repository

UP_TO_DATE = "Product is up-to-date!"


def log_of(writer, verb, *arguments):
    report = writer.getRepositoryReport()
    before = len(report.getLog())
    getattr(writer, verb)(*arguments)
    return report.getLog()[before:]


@pytest.fixture(scope="module")
def own_store(tmp_path_factory, root_dir):
    """A writer and a reader on a store of their own that holds one generated product."""
    store = tmp_path_factory.mktemp("own") / "store"
    writer = Repository.Writer.open(str(store), [str(root_dir / "toolbox" / "arithmetica")])
    writer.generateRepository()
    assert not writer.getRepositoryReport().hasError()
    return writer, Repository.Reader.open(str(store))


@pytest.mark.parametrize(
    "verb, word, up_to_date",
    [
        ("generateProduct", "Minimal", True),
        ("generateProduct", "IgnoreTimestamp", True),
        # Any other word is mode 0 without an error, this one too.
        ("generateProduct", "regenerate", True),
        ("generateProduct", "", True),
        ("generateProduct", "Regenerate", False),
        ("generateRepository", "regenerate", True),
        ("generateRepository", "Regenerate", False),
    ],
)
def test_mode_words_of_the_generating_verbs(own_store, verb, word, up_to_date):
    writer, reader = own_store
    arguments = (reader.getProduct("arithmetica"), word) if verb == "generateProduct" else (word,)
    lines = log_of(writer, verb, *arguments)
    assert any("Processing product Arithmetica" in line for line in lines), lines
    assert any(UP_TO_DATE in line for line in lines) == up_to_date, lines
    assert not writer.getRepositoryReport().hasError(), lines
    assert reader.isProductUpToDate(reader.getProduct("arithmetica"))


def test_a_host_path_of_non_strings_is_refused_before_anything_is_made(tmp_path):
    for host_path in (["ok", 3], [None], [["nested"]], [b"bytes"]):
        with pytest.raises(tandril.StringTypeExpected, match="^Expected a string argument.$"):
            Repository.Writer.open(str(tmp_path / "store"), host_path)
        assert not (tmp_path / "store").exists()


def test_the_report_keeps_what_it_is_told(capfd):
    report = Repository.RepositoryReport.create()
    report.log("first line")
    report.logWarning("careful")
    report.logWarning("Test:Warning", "with an id")
    report.logError("Test:Error", "it broke")
    report.logError("no id")
    assert report.getWarnings() == [("InternalWarning", "careful"), ("Test:Warning", "with an id")]
    assert report.getErrors() == [("Test:Error", "it broke"), ("InternalError", "no id")]
    log = "".join(report.getLog())
    assert "Action: first line\n" in log
    assert "**Warning**   careful" in log and "??? **Error**   it broke" in log
    for echo, line in ((True, "echoed"), (False, "quiet")):
        report.logToConsoleInteractively(echo)
        report.log(line)
        assert (line in capfd.readouterr().out) == echo


def test_the_checksum_of_a_file(tmp_path):
    data = tmp_path / "model.tdlib.json"
    data.write_bytes(b"{\"blocks\": []}\n")
    report = Repository.RepositoryReport.create()
    expected = "".join(str(b) for b in hashlib.md5(data.read_bytes()).digest())
    assert Repository.Util.computeCheckSum(str(data), report) == expected
    assert not report.hasError()
    assert Repository.Util.computeCheckSum(str(tmp_path / "missing"), report) == ""
    assert report.hasError()
