// The manifest schema pinned: each class's own properties in registration
// order, as "name:type=default" (a trailing "*" marks a structural one).
// Manifests on disk are read by these names and defaults; a change here is a
// change of the schema and goes with a new signature.

#include "model/MetaModel.h"
#include "model/Model.h"
#include "model/Signature.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace LibraryBrowser;

TEST(ManifestSchema, EveryClassHasItsPropertiesInOrderWithTypesAndDefaults)
{
    const struct {
        const char* typeName;
        const char* superName;
        const char* ownProperties;
    } classes[] = {
        {"TandrilObjectImpl", "", "uniquePath:StringId= isInvalid:bool=0"},
        {"BlockImpl", "TandrilObjectImpl",
         "path:std::string= name:std::string= displayName:std::string= displayPath:std::string= "
         "iconFileSpec:std::string= description:std::string= position:QRectF=0,0,0,0 "
         "reposDirectorySpec:std::string= reposManifestsArchiveSpec:SharedText= reposIconsArchiveSpec:SharedText= "
         "productName:std::string= treeIcon:std::string= panelIcon:std::string="},
        {"SubSystemImpl", "BlockImpl",
         "isFlat:bool=1 isEmpty:bool=1 directorySpec:std::string= manifestFileSpec:std::string="},
        {"LibraryImpl", "SubSystemImpl",
         "isProduct:bool=1 isTopLevel:bool=0 modelFileSpec:std::string= modelFileCheckSum:std::string= "
         "modelFileSize:std::int64_t=0 modelFileDate:std::int32_t=0 shadowedLastModified:std::string= "
         "lastModified:std::string= product:LibraryImplPointer=0* fileDependencies:FileInfoVector= "
         "children:StringVector= dependencies:LibraryImplList=*"},
        {"LibraryRefImpl", "SubSystemImpl",
         "libraryRefName:std::string= libraryRefPath:std::string= libraryRefUniquePath:std::string="},
        {"PaletteImpl", "LibraryImpl", ""},
    };
    const MetaModel& meta = MetaModel::instance();
    ModelPtr model = Model::createModel();
    ASSERT_EQ(meta.metaNodes().size(), std::size(classes));
    for (std::size_t c = 0; c < std::size(classes); ++c) {
        const MetaNode& node = *meta.metaNodes()[c];
        SCOPED_TRACE(classes[c].typeName);
        EXPECT_EQ(node.typeName(), StringId(classes[c].typeName)) << "classes register in this order";
        const MetaNode* super = node.superClass();
        EXPECT_EQ(super ? super->typeName().str() : std::string(), classes[c].superName);
        // Ancestors' properties come first, in their order.
        const std::size_t inherited = super ? super->properties().size() : 0;
        if (super) {
            ASSERT_LE(inherited, node.propertyNames().size());
            EXPECT_TRUE(std::equal(super->propertyNames().begin(), super->propertyNames().end(),
                                   node.propertyNames().begin()));
            EXPECT_TRUE(node.isKindOf(*super) && !super->isKindOf(node));
        }
        std::string own;
        for (std::size_t i = inherited; i < node.properties().size(); ++i) {
            const auto& property = *node.properties()[i];
            own += (own.empty() ? "" : " ") + property.name().str() + ":" + property.valueTypeName().str() + "="
                   + property.defaultValueAsString() + (property.isStructural() ? "*" : "");
        }
        EXPECT_EQ(own, classes[c].ownProperties);

        // A new node holds the defaults and is clean; the bare object can't be made.
        TandrilObjectImpl* created = model->createNode(node.typeName());
        ASSERT_EQ(created != nullptr, super != nullptr);
        if (!created)
            continue;
        EXPECT_EQ(created->getTypeName(), node.typeName());
        EXPECT_FALSE(created->isDirty());
        for (const auto& property : node.properties())
            EXPECT_TRUE(property->hasDefaultValue(*created)) << property->name().str();
    }
    EXPECT_FALSE(meta.metaNode(StringId("PaletteImpl"))->isKindOf(*meta.metaNode(StringId("LibraryRefImpl"))));
}

TEST(ManifestSchema, TheSignatureIsTheFourFixedWords)
{
    EXPECT_EQ(Signature::manifestSchema().toString(), "82d9731addc98524506a2f8fd4ee71ca");
}
