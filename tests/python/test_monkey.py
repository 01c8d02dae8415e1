"""A short run of the monkey (monkey.py): random scripted steps on the window,
its state checked after each. Long runs and their figures: FUZZING.md."""

import pytest

from monkey import run_seed


@pytest.mark.parametrize("seed", [1, 2, 3])
def test_random_steps_keep_the_window_answering_and_consistent(session, seed):
    assert run_seed(seed, 1000) == 1000
