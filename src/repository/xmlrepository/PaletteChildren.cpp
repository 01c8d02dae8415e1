#include "repository/xmlrepository/PaletteChildren.h"

#include "frame/MessageCatalogue.h"
#include "frame/Messages.h"
#include "model/LibraryImpl.h"
#include "repository/RepositoryReader.h"

namespace LibraryBrowser {

std::vector<TandrilObject> paletteChildren(RepositoryReport& report, const Library& palette, RepositoryReader& reader)
{
    std::vector<TandrilObject> children;
    const auto* node = dynamic_cast<const LibraryImpl*>(palette.getImpl());
    if (!node)
        return children;
    // A copy: the lookups below may reload the palette's own node.
    const StringVector names = node->getChildren();
    const std::string displayName = node->getDisplayName();
    for (const std::string& childName : names) {
        const Library product = reader.getProduct(childName);
        if (product.isValid() && product != palette) {
            const TandrilObject child = reader.getTandrilObject(childName);
            if (child.isValid())
                children.push_back(child);
        } else if (product == palette) {
            report.logWarning("Tandril:LibraryBrowser:CycleInPalette",
                              Messages::xlatedMessageFromIdAndCharStar(MessageId::TDLB_CycleInPalette, displayName));
        }
    }
    return children;
}

} // namespace LibraryBrowser
