#include "model/Model.h"
#include "model/NodeMap.h"

#include <gtest/gtest.h>

using namespace LibraryBrowser;

TEST(NodeClasses, SettersMarkDirtyOnlyOnChange)
{
    ModelPtr model = Model::createModel();
    BlockImpl* block = model->createBlockImpl();
    block->setName("");
    block->setPosition(QRectF());
    block->setIsInvalid(false);
    EXPECT_FALSE(block->isDirty()) << "setting equal values leaves the node clean";

    model->beginChangeSet();
    block->setName("Gain");
    EXPECT_TRUE(block->isDirty());
    EXPECT_TRUE(model->commitChangeSet());

    block->clearDirty();
    model->beginChangeSet();
    block->setName("Gain");
    EXPECT_FALSE(model->commitChangeSet()) << "nothing changed in this change set";
    EXPECT_FALSE(model->commitChangeSet()) << "a commit without a begin does nothing";

    LibraryImpl* library = model->createLibraryImpl();
    library->setChildren({});
    EXPECT_TRUE(library->isDirty()) << "containers count as changed whenever set";
}

TEST(NodeClasses, ModelOwnsNodesInCreationOrder)
{
    ModelPtr model = Model::createModel();
    BlockImpl* a = model->createBlockImpl();
    LibraryImpl* b = model->createLibraryImpl();
    PaletteImpl* c = Model::createPaletteImplIntoModel(model.get());
    EXPECT_EQ(model->getNodes().get(2), c);
    EXPECT_EQ(model->findNode(b->id()), b);
    EXPECT_NE(a->id(), b->id());

    b->setName("gone");
    model->removeNode(b);
    EXPECT_EQ(model->nodeCount(), 2);
    EXPECT_EQ(model->findNode(2), nullptr);
    // Out of the model but still readable: a cache's handle may point at it
    // until the cache lets go of the model.
    EXPECT_EQ(b->getModel(), model.get());
    EXPECT_EQ(b->getName(), "gone");
}

TEST(NodeCopies, NonStructuralCopyKeepsTheTargetsReferences)
{
    ModelPtr model = Model::createModel();
    LibraryImpl* productA = model->createLibraryImpl();
    LibraryImpl* productB = model->createLibraryImpl();
    LibraryImpl* source = model->createLibraryImpl();
    source->setName("Sources");
    source->setChildren({"Sine Wave", "Step"});
    source->setFileDependencies({{"sources/tdblocks.json", "1234", 7, 8}});
    source->setProduct(productA);
    LibraryImplList deps;
    deps.append(productA);
    source->setDependencies(deps);
    EXPECT_TRUE(source->getDependencies().sharesDataWith(deps)) << "setting a list shares its data";

    LibraryImpl* target = model->createLibraryImpl();
    target->setProduct(productB);
    LibraryImplList targetDeps;
    targetDeps.append(productB);
    target->setDependencies(targetDeps);

    target->copyNonStructuralPropertiesFromNode(static_cast<const Node*>(source));
    EXPECT_EQ(target->getName(), "Sources");
    EXPECT_EQ(target->getChildren(), source->getChildren());
    EXPECT_EQ(target->getFileDependencies(), source->getFileDependencies());
    EXPECT_EQ(target->getProduct(), productB);
    EXPECT_EQ(target->getDependencies().get(0), productB);

    target->copyPropertiesFromNode(static_cast<const Node*>(source));
    EXPECT_EQ(target->getProduct(), productA);
    EXPECT_EQ(target->getDependencies().get(0), productA);

    // A source of a more general class copies what the two have in common.
    BlockImpl* block = model->createBlockImpl();
    block->setName("Gain");
    target->copyPropertiesFromNode(static_cast<const Node*>(block));
    EXPECT_EQ(target->getName(), "Gain");
    EXPECT_EQ(target->getChildren(), source->getChildren());

    std::unique_ptr<Node> copy = source->clone();
    auto* clone = dynamic_cast<LibraryImpl*>(copy.get());
    ASSERT_NE(clone, nullptr);
    EXPECT_EQ(clone->getModel(), nullptr);
    EXPECT_EQ(clone->getName(), "Sources");
    EXPECT_EQ(clone->getProduct(), productA);
}

TEST(NodeCopies, SwizzlingRebindsMappedReferencesAndDropsTheRest)
{
    ModelPtr from = Model::createModel();
    LibraryImpl* product = from->createLibraryImpl();
    LibraryImpl* kept = from->createLibraryImpl();
    LibraryImpl* unmapped = from->createLibraryImpl();
    LibraryImpl* library = from->createLibraryImpl();
    library->setProduct(product);
    LibraryImplList deps;
    deps.append(kept);
    deps.append(unmapped);
    library->setDependencies(deps);

    ModelPtr to = Model::createModel();
    NodeMap map;
    LibraryImpl* productCopy = to->createLibraryImpl();
    LibraryImpl* keptCopy = to->createLibraryImpl();
    map.insert(product->id(), productCopy->id());
    map.insert(kept->id(), keptCopy->id());
    LibraryImpl* moved = to->createLibraryImpl();
    moved->copyPropertiesFromNode(library);
    moved->internalSwizzleNodePointers(map);

    EXPECT_EQ(moved->getProduct(), productCopy);
    ASSERT_EQ(moved->getDependencies().size(), 1);
    EXPECT_EQ(moved->getDependencies().get(0), keptCopy);

    NodeMap empty;
    moved->internalSwizzleNodePointers(empty);
    EXPECT_EQ(moved->getProduct(), nullptr);
    EXPECT_TRUE(moved->getDependencies().isEmpty());
}
