"""Generating verbs, their mode words, the report and the checksum utility."""

import hashlib

import pytest

import tandril
from tandril import Repository

UP_TO_DATE = "Product is up-to-date!"


def new_lines(report, before):
    return report.getLog()[before:]


def generate(writer, product, *mode):
    report = writer.getRepositoryReport()
    before = len(report.getLog())
    writer.generateProduct(product, *mode)
    return new_lines(report, before)


@pytest.fixture(scope="module")
def own_store(tmp_path_factory, root_dir):
    """A writer and a reader on a store of their own that holds one generated product."""
    store = tmp_path_factory.mktemp("own") / "store"
    writer = Repository.Writer.open(str(store), [str(root_dir / "toolbox" / "arithmetica")])
    writer.generateRepository()
    assert not writer.getRepositoryReport().hasError()
    return writer, Repository.Reader.open(str(store))


@pytest.mark.parametrize(
    "word, up_to_date",
    [
        ("Minimal", True),
        ("IgnoreTimestamp", True),
        # Any other word is mode 0 without an error, this one too.
        ("regenerate", True),
        ("REGENERATE", True),
        ("", True),
        ("Everything", True),
        ("Regenerate", False),
    ],
)
def test_mode_words_of_generate_product(own_store, word, up_to_date):
    writer, reader = own_store
    report = writer.getRepositoryReport()
    product = reader.getProduct("arithmetica")
    assert reader.isProductUpToDate(product)
    lines = generate(writer, product, word)
    assert any("Processing product Arithmetica" in line for line in lines), lines
    assert any(UP_TO_DATE in line for line in lines) == up_to_date
    assert not report.hasError(), lines
    assert reader.isProductUpToDate(reader.getProduct("arithmetica"))


@pytest.mark.parametrize("word, generated", [("regenerate", False), ("Regenerate", True)])
def test_mode_words_of_generate_repository(own_store, word, generated):
    writer, _ = own_store
    report = writer.getRepositoryReport()
    before = len(report.getLog())
    writer.generateRepository(word)
    lines = new_lines(report, before)
    assert any(UP_TO_DATE in line for line in lines) != generated, lines
    assert not report.hasError()


def test_a_changed_library_file_makes_its_product_out_of_date(repository, root_dir):
    library_file = root_dir / "toolbox" / "switchyard" / "switchyard.tdlib.json"
    library_file.write_bytes(library_file.read_bytes() + b"\n")
    product = repository.getProduct("switchyard")
    assert not repository.isProductUpToDate(product)
    assert not repository.isProductUpToDate(product, True)
    assert not repository.isProductUpToDate("switchyard")
    lines = generate(repository, product)
    assert any("Processing product Switchyard" in line for line in lines), lines
    assert repository.isProductUpToDate(repository.getProduct("switchyard"))


@pytest.mark.parametrize(
    "path",
    ["kinetics/Continuous/Integrator", "kinetics/No Such Block", "nosuchproduct", ""],
)
def test_generating_what_is_no_product_goes_to_the_report(repository, path):
    report = repository.getRepositoryReport()
    report.clearError()
    obj = repository.getTandrilObject(path)
    repository.generateProduct(obj)
    repository.generateProduct(obj, "Regenerate")
    assert report.hasError()
    assert ("InternalError", "Unable to start generation: the product is invalid") in report.getErrors()
    report.clearError()


def test_destroying_an_unknown_product_goes_to_the_report(repository):
    report = repository.getRepositoryReport()
    report.clearError()
    repository.destroyProduct(repository.getTandrilObject("nosuchproduct"))
    assert report.hasError()
    assert any("Unable to find product" in message for _, message in report.getErrors())
    report.clearError()


def test_a_writer_on_a_directory_of_its_own(tmp_path, root_dir):
    store = tmp_path / "store"
    writer = Repository.Writer.open(str(store), [str(root_dir / "toolbox" / "arithmetica")])
    writer.generateRepository()
    assert not writer.getRepositoryReport().hasError()
    reader = Repository.Reader.open(str(store))
    assert reader.exists()
    assert "arithmetica" in [o.Path for o in reader.getProductsIterator()]
    writer.destroyRepository()
    assert not Repository.Reader.open(str(store)).exists()


@pytest.mark.parametrize("host_path", [["ok", 3], [None], [["nested"]], [b"bytes"]])
def test_a_host_path_of_non_strings_is_refused(tmp_path, host_path):
    with pytest.raises(tandril.Error) as info:
        Repository.Writer.open(str(tmp_path / "store"), host_path)
    assert info.value.identifier == "Tandril:Repository:StringTypeExpected"
    assert str(info.value) == "Expected a string argument."
    assert not (tmp_path / "store").exists()


def test_the_report_keeps_what_it_is_told(capfd):
    report = Repository.RepositoryReport.create()
    assert not report.hasError() and not report.hasWarning()
    report.log("first line")
    report.logWarning("careful")
    report.logWarning("Test:Warning", "with an id")
    report.logError("Test:Error", "it broke")
    report.logError("no id")
    assert report.hasWarning() and report.hasError()
    assert report.getWarnings() == [("InternalWarning", "careful"), ("Test:Warning", "with an id")]
    assert report.getErrors() == [("Test:Error", "it broke"), ("InternalError", "no id")]
    log = "".join(report.getLog())
    assert "Action: first line\n" in log
    assert "**Warning**   careful" in log and "??? **Error**   it broke" in log
    report.clearError()
    report.clearWarning()
    assert not report.hasError() and not report.hasWarning()
    assert capfd.readouterr().out == ""
    report.logToConsoleInteractively(True)
    report.log("echoed")
    assert "echoed" in capfd.readouterr().out
    report.logToConsoleInteractively(False)
    report.log("quiet")
    assert capfd.readouterr().out == ""


def test_the_checksum_of_a_file(tmp_path):
    data = tmp_path / "model.tdlib.json"
    data.write_bytes(b"{\"blocks\": []}\n")
    report = Repository.RepositoryReport.create()
    expected = "".join(str(b) for b in hashlib.md5(data.read_bytes()).digest())
    assert Repository.Util.computeCheckSum(str(data), report) == expected
    assert not report.hasError()
    assert Repository.Util.computeCheckSum(str(tmp_path / "missing"), report) == ""
    assert report.hasError()
