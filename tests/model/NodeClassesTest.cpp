#include "model/Model.h"
#include "model/NodeMap.h"

#include <gtest/gtest.h>

using namespace LibraryBrowser;

// Setters mark a node dirty only on a change (containers whenever set), and
// a change set commits only what changed. The model owns its nodes in
// creation order; a removed node stays readable, as a cache's handle may
// point at it until the cache lets go of the model.
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
    EXPECT_TRUE(library->isDirty());

    PaletteImpl* palette = Model::createPaletteImplIntoModel(model.get());
    EXPECT_EQ(model->getNodes().get(2), palette);
    EXPECT_EQ(model->findNode(library->id()), library);
    EXPECT_NE(block->id(), library->id());
    library->setName("gone");
    model->removeNode(library);
    EXPECT_EQ(model->nodeCount(), 2);
    EXPECT_EQ(model->findNode(2), nullptr);
    EXPECT_EQ(library->getModel(), model.get());
    EXPECT_EQ(library->getName(), "gone");
}

// A non-structural copy keeps the target's references, a full one takes the
// source's, one from a more general class what the two have in common, and a
// clone stands outside any model. Swizzling rebinds mapped references and
// drops the rest.
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

    LibraryImpl* unmapped = model->createLibraryImpl();
    deps.append(unmapped);
    source->setDependencies(deps);
    ModelPtr to = Model::createModel();
    NodeMap map;
    LibraryImpl* productCopy = to->createLibraryImpl();
    map.insert(productA->id(), productCopy->id());
    LibraryImpl* moved = to->createLibraryImpl();
    moved->copyPropertiesFromNode(source);
    moved->internalSwizzleNodePointers(map);
    EXPECT_EQ(moved->getProduct(), productCopy);
    ASSERT_EQ(moved->getDependencies().size(), 1);
    EXPECT_EQ(moved->getDependencies().get(0), productCopy);
    NodeMap empty;
    moved->internalSwizzleNodePointers(empty);
    EXPECT_EQ(moved->getProduct(), nullptr);
    EXPECT_TRUE(moved->getDependencies().isEmpty());
}
