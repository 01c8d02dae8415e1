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


def test_a_changed_library_file_makes_its_product_out_of_date(repository, root_dir):
    library_file = root_dir / "toolbox" / "switchyard" / "switchyard.tdlib.json"
    library_file.write_bytes(library_file.read_bytes() + b"\n")
    product = repository.getProduct("switchyard")
    assert not repository.isProductUpToDate(product)
    assert not repository.isProductUpToDate(product, True)
    assert not repository.isProductUpToDate("switchyard")
    lines = log_of(repository, "generateProduct", product)
    assert any("Processing product Switchyard" in line for line in lines), lines
    assert repository.isProductUpToDate(repository.getProduct("switchyard"))


@pytest.mark.parametrize("path", ["kinetics/Continuous/Integrator", "nosuchproduct", ""])
def test_generating_or_destroying_what_is_no_product_goes_to_the_report(repository, path):
    report = repository.getRepositoryReport()
    report.clearError()
    obj = repository.getTandrilObject(path)
    for mode in ((), ("Regenerate",)):
        repository.generateProduct(obj, *mode)
        assert report.getErrors() == [("InternalError", "Unable to start generation: the product is invalid")]
        report.clearError()
    repository.destroyProduct(obj)
    assert any("Unable to find product" in message for _, message in report.getErrors())
    report.clearError()


def test_a_writer_on_a_directory_of_its_own_and_its_host_path(tmp_path, root_dir):
    store = tmp_path / "store"
    for host_path in (["ok", 3], [None], [["nested"]], [b"bytes"]):
        with pytest.raises(tandril.StringTypeExpected, match="^Expected a string argument.$"):
            Repository.Writer.open(str(store), host_path)
        assert not store.exists()
    writer = Repository.Writer.open(str(store), [str(root_dir / "toolbox" / "arithmetica")])
    writer.generateRepository()
    assert not writer.getRepositoryReport().hasError()
    assert [o.Path for o in Repository.Reader.open(str(store)).getProductsIterator()] == ["arithmetica"]
    writer.destroyRepository()
    assert not Repository.Reader.open(str(store)).exists()


def test_the_report_keeps_what_it_is_told(capfd):
    report = Repository.RepositoryReport.create()
    assert not report.hasError() and not report.hasWarning()
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
    report.clearError()
    report.clearWarning()
    assert not report.hasError() and not report.hasWarning()
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
