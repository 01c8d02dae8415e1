// The ranking engine for scripts: tandril.Repository.BlockRanker.

#include "Bindings.h"

#include "repository/RepositoryReader.h"
#include "repository/search/BlockRanker.h"

#include <pybind11/stl.h>

namespace py = pybind11;

namespace LibraryBrowser::Python {

namespace {

// Paths given as any iterable of strings; a lone string would be taken
// letter by letter, so it is refused.
std::unordered_set<std::string> pathSet(const py::iterable& paths, const char* argument)
{
    if (py::isinstance<py::str>(paths))
        throw py::type_error(std::string(argument) + " must be a collection of block paths, not one string");
    std::unordered_set<std::string> set;
    for (const py::handle& path : paths) {
        if (!py::isinstance<py::str>(path))
            throw py::type_error(std::string(argument) + " must hold block paths as strings, not " +
                                 std::string(py::str(py::type::of(path).attr("__name__"))));
        set.insert(path.cast<std::string>());
    }
    return set;
}

} // namespace

void bindRanking(py::module_& repository)
{
    py::class_<RankedBlock> ranked(repository, "RankedBlock",
                                   "One block of a ranked answer: the block, its score, the matched runs of its "
                                   "name and whether it is a favourite or recently used.");
    ranked.def_readonly("block", &RankedBlock::block, "The block (a TandrilObject).");
    ranked.def_readonly("score", &RankedBlock::score, "The higher, the better the match.");
    ranked.def_property_readonly(
        "spans",
        [](const RankedBlock& self) {
            py::list spans;
            for (const NameSpan& span : self.spans)
                spans.append(py::make_tuple(span.start, span.length));
            return spans;
        },
        "The matched runs of the display name as (start, length) in characters; empty when only the "
        "description or the library path matched.");
    ranked.def_readonly("favourite", &RankedBlock::favourite);
    ranked.def_readonly("recent", &RankedBlock::recent);
    ranked.def("__repr__", [](const RankedBlock& self) {
        return "<RankedBlock " + self.block.getPath() + " score " + std::to_string(self.score) + ">";
    });

    py::class_<BlockRanker> ranker(
        repository, "BlockRanker",
        "The ranked search over the blocks of a reader or repository. Building it reads every block once; "
        "each rank() then answers from memory. Build a new one after the repository has been regenerated.");
    ranker.def(py::init([](RepositoryReader& reader) { return std::make_unique<BlockRanker>(reader); }),
               py::arg("reader"), py::keep_alive<1, 2>());
    ranker.def(
        "rank",
        [](const BlockRanker& self, const std::string& query, py::ssize_t limit, const py::iterable& favourites,
           const py::iterable& recents) {
            if (limit < 0)
                throw py::value_error("limit must be 0 (all blocks) or more, not " + std::to_string(limit));
            RankingQuery request;
            request.text = query;
            request.limit = std::size_t(limit);
            request.favourites = pathSet(favourites, "favourites");
            request.recents = pathSet(recents, "recents");
            return self.rank(request).blocks;
        },
        py::arg("query"), py::arg("limit") = 20, py::arg("favourites") = py::tuple(),
        py::arg("recents") = py::tuple(),
        "The blocks that match every word of the query, best first, at most limit of them (0 for all). "
        "Favourites and recents are block paths that get a boost; an empty query lists them, favourites first.");
    ranker.def(
        "count", [](const BlockRanker& self, const std::string& query) { return self.rank({query, {}, {}, 1}).total; },
        py::arg("query"), "How many blocks match every word of the query.");
    ranker.def("__len__", [](const BlockRanker& self) { return self.index().size(); },
               "The number of blocks the ranker knows.");
}

} // namespace LibraryBrowser::Python
