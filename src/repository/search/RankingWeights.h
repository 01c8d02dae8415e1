#pragma once

namespace LibraryBrowser::RankingWeights {

// What one query word scores by where it matched. The name's tiers lie above
// everything else, so that a block found by its name always comes before
// one found only by its description or its library.
constexpr int ExactName = 1000;
constexpr int NamePrefix = 800;
constexpr int NameWordStart = 600;
constexpr int NameHumps = 500;
constexpr int InsideName = 400;
constexpr int NameSubsequence = 200;
constexpr int DescriptionKeyword = 150;
constexpr int DescriptionPrefix = 100;
constexpr int LibraryKeyword = 80;
constexpr int LibraryPrefix = 60;

// Added once to a block that matched every word: enough to lift it over
// matches of its own tier and the next lower one, not over a far better one.
constexpr int Favourite = 300;
constexpr int Recent = 150;

} // namespace LibraryBrowser::RankingWeights
