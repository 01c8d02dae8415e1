"""A short run of the monkey (monkey.py): random scripted steps on the window,
its state checked after each. Long runs and their figures: FUZZING.md."""

import pytest

from monkey import run_seed

# Left out until its finding is fixed: see FUZZING.md and
# test_hostile_scripts.test_a_hit_is_selected_after_the_results_page_was_laid_out_again.
KNOWN_FINDINGS = ["selectSearchResult"]


@pytest.mark.parametrize("seed", [1, 2, 3])
def test_random_steps_keep_the_window_answering_and_consistent(session, seed):
    assert run_seed(seed, 1000, skip=KNOWN_FINDINGS) == 1000
