"""The ranked search from scripts: what crosses the binding, and what a script may get wrong.
The ranking itself is BlockRankerTest's."""

import pytest

from tandril import Repository

PID = "kinetics/Continuous/PID Controller"


@pytest.fixture(scope="module")
def ranker(repository):
    return Repository.BlockRanker(repository)


def test_hits_carry_their_block_runs_and_boosts(ranker):
    first = ranker.rank("controller pid")[0]
    assert (first.block.Path, first.spans) == (PID, [(0, 3), (4, 10)])
    hits = ranker.rank("wave", limit=0)
    assert len(hits) == ranker.count("wave") > 3
    assert [h.block.Path for h in ranker.rank("wave", limit=2)] == [h.block.Path for h in hits[:2]]
    last = hits[-1].block.Path
    boosted = ranker.rank("wave", limit=0, favourites=[last])
    assert next(h for h in boosted if h.block.Path == last).score > hits[-1].score
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
