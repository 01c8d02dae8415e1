#include "repository/InvalidObjects.h"

#include "model/Model.h"

namespace LibraryBrowser {

namespace {

template <class Impl>
Impl* makePlaceholder(Impl* (Model::*create)(), const std::string& name)
{
    // Never freed: handles of any cache may point at the node until exit.
    Model* model = new Model();
    model->beginChangeSet();
    Impl* node = (model->*create)();
    node->setIsInvalid(true);
    node->setName(name);
    node->setPath(name);
    node->setDisplayName(name);
    node->setDisplayPath(name);
    model->commitChangeSet();
    return node;
}

} // namespace

BlockImpl* InvalidObjects::invalidBlock()
{
    static BlockImpl* const node = makePlaceholder(&Model::createBlockImpl, "InvalidBlock");
    return node;
}

LibraryImpl* InvalidObjects::invalidLibrary()
{
    static LibraryImpl* const node = makePlaceholder(&Model::createLibraryImpl, "InvalidLibrary");
    return node;
}

} // namespace LibraryBrowser
