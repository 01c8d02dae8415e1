// The manifest schema pinned: every class's properties in registration
// order, with their value types and the text of their defaults. Manifests
// on disk are read by these names; a change here is a change of the schema
// and goes with a new signature.

#include "model/MetaModel.h"
#include "model/Signature.h"

#include <gtest/gtest.h>

#include <vector>

using namespace LibraryBrowser;

namespace {

struct Property {
    const char* name;
    const char* type;
    const char* defaultText;
    bool structural = false;
};
using Properties = std::vector<Property>;

const Properties tandrilObject{{"uniquePath", "StringId", ""}, {"isInvalid", "bool", "0"}};
const Properties block{
    {"path", "std::string", ""},
    {"name", "std::string", ""},
    {"displayName", "std::string", ""},
    {"displayPath", "std::string", ""},
    {"iconFileSpec", "std::string", ""},
    {"description", "std::string", ""},
    {"position", "QRectF", "0,0,0,0"},
    {"reposDirectorySpec", "std::string", ""},
    {"reposManifestsArchiveSpec", "SharedText", ""},
    {"reposIconsArchiveSpec", "SharedText", ""},
    {"productName", "std::string", ""},
    {"treeIcon", "std::string", ""},
    {"panelIcon", "std::string", ""},
};
const Properties subsystem{{"isFlat", "bool", "1"},
                           {"isEmpty", "bool", "1"},
                           {"directorySpec", "std::string", ""},
                           {"manifestFileSpec", "std::string", ""}};
const Properties library{
    {"isProduct", "bool", "1"},
    {"isTopLevel", "bool", "0"},
    {"modelFileSpec", "std::string", ""},
    {"modelFileCheckSum", "std::string", ""},
    {"modelFileSize", "std::int64_t", "0"},
    {"modelFileDate", "std::int32_t", "0"},
    {"shadowedLastModified", "std::string", ""},
    {"lastModified", "std::string", ""},
    {"product", "LibraryImplPointer", "0", true},
    {"fileDependencies", "FileInfoVector", ""},
    {"children", "StringVector", ""},
    {"dependencies", "LibraryImplList", "", true},
};
const Properties libraryRef{{"libraryRefName", "std::string", ""},
                            {"libraryRefPath", "std::string", ""},
                            {"libraryRefUniquePath", "std::string", ""}};

Properties join(std::initializer_list<const Properties*> parts)
{
    Properties all;
    for (const Properties* part : parts)
        all.insert(all.end(), part->begin(), part->end());
    return all;
}

} // namespace

TEST(ManifestSchema, EveryClassHasItsPropertiesInOrderWithTypesAndDefaults)
{
    const struct {
        const char* typeName;
        const char* superName;
        Properties properties;
    } classes[] = {
        {"TandrilObjectImpl", nullptr, tandrilObject},
        {"BlockImpl", "TandrilObjectImpl", join({&tandrilObject, &block})},
        {"SubSystemImpl", "BlockImpl", join({&tandrilObject, &block, &subsystem})},
        {"LibraryImpl", "SubSystemImpl", join({&tandrilObject, &block, &subsystem, &library})},
        {"LibraryRefImpl", "SubSystemImpl", join({&tandrilObject, &block, &subsystem, &libraryRef})},
        {"PaletteImpl", "LibraryImpl", join({&tandrilObject, &block, &subsystem, &library})},
    };
    const MetaModel& meta = MetaModel::instance();
    ASSERT_EQ(meta.metaNodes().size(), std::size(classes));
    for (std::size_t c = 0; c < std::size(classes); ++c) {
        const auto& expected = classes[c];
        SCOPED_TRACE(expected.typeName);
        const MetaNode& node = *meta.metaNodes()[c];
        EXPECT_EQ(node.typeName(), StringId(expected.typeName)) << "classes register in this order";
        if (expected.superName) {
            ASSERT_NE(node.superClass(), nullptr);
            EXPECT_EQ(node.superClass()->typeName(), StringId(expected.superName));
        } else {
            EXPECT_EQ(node.superClass(), nullptr);
        }
        ASSERT_EQ(node.properties().size(), expected.properties.size());
        for (std::size_t i = 0; i < expected.properties.size(); ++i) {
            const Property& want = expected.properties[i];
            const auto& have = *node.properties()[i];
            SCOPED_TRACE(want.name);
            EXPECT_EQ(have.name(), StringId(want.name));
            EXPECT_EQ(node.propertyNames()[i], StringId(want.name));
            EXPECT_EQ(have.valueTypeName(), StringId(want.type));
            EXPECT_EQ(have.defaultValueAsString(), want.defaultText);
            EXPECT_EQ(have.isStructural(), want.structural);
        }
    }
}

TEST(ManifestSchema, TheSignatureIsTheFourFixedWords)
{
    EXPECT_EQ(Signature::manifestSchema().toString(), "82d9731addc98524506a2f8fd4ee71ca");
}
