#pragma once

#include "Command.h"

namespace LibraryBrowser::Tdlb {

// update: opens the repository, which synchronises the stores and the list of products.
Command updateCommand();
// list: the products with their path, kind, place in the tree and state.
Command listCommand();
// search: the objects whose shown name matches, grouped by product.
Command searchCommand();
// find: blocks ranked by how well they match the words of a query.
Command findCommand();
// tree: the objects below the top level or below one object, indented by depth.
Command treeCommand();
// show: every attribute of one object, and its icon written to a file.
Command showCommand();
// generate: the writer's generation of every product or of one.
Command generateCommand();
// destroy: removes the stored data of every product or of one.
Command destroyCommand();
// checksum: the checksum the store records for a file.
Command checksumCommand();
// page: one library page of tiles in a window, or rendered to a PNG.
Command pageCommand();
Command browseCommand();
// report: the log of the run that opens the repository.
Command reportCommand();

} // namespace LibraryBrowser::Tdlb
