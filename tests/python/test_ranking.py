"""The ranked search from scripts: best first, matched runs, boosts, and what a script may get wrong."""

import pytest

from tandril import Repository

PID = "kinetics/Continuous/PID Controller"


@pytest.fixture(scope="module")
def ranker(repository):
    return Repository.BlockRanker(repository)


def test_words_in_any_order_rank_the_best_match_first_with_its_runs(ranker):
    first = ranker.rank("controller pid")[0]
    assert first.block.Path == PID
    assert first.spans == [(0, 3), (4, 10)]
    assert ranker.rank("pid controller")[0].score == first.score
    hits = ranker.rank("wave", limit=0)
    assert len(hits) == ranker.count("wave") > 3
    assert [h.score for h in hits] == sorted((h.score for h in hits), reverse=True)
    assert len({h.block.Path for h in hits}) == len(hits)
    assert [h.block.Path for h in ranker.rank("wave", limit=2)] == [h.block.Path for h in hits[:2]]
    assert ranker.rank("xyzzy") == []


def test_favourites_and_recents_are_boosted_and_listed_for_an_empty_query(ranker):
    plain = ranker.rank("wave", limit=0)
    last = plain[-1].block.Path
    boosted = ranker.rank("wave", limit=0, favourites=[last])
    assert next(h for h in boosted if h.block.Path == last).score > plain[-1].score
    listed = ranker.rank("", favourites={last}, recents=[PID, "no/such/block"])
    assert [(h.block.Path, h.favourite, h.recent) for h in listed] == [(last, True, False), (PID, False, True)]


@pytest.mark.parametrize(
    "call, error, text",
    [
        (lambda r: r.rank("pid", limit=-1), ValueError, "limit must be 0"),
        (lambda r: r.rank("pid", favourites="kinetics"), TypeError, "not one string"),
        (lambda r: r.rank("pid", recents=[1]), TypeError, "as strings, not int"),
        (lambda r: r.rank(42), TypeError, ""),
        (lambda r: Repository.BlockRanker("store"), TypeError, ""),
    ],
)
def test_wrong_arguments_are_refused_clearly(ranker, call, error, text):
    with pytest.raises(error, match=text):
        call(ranker)
