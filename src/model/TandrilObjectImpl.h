#pragma once

#include "model/Node.h"
#include "model/ManifestSchema.h"
#include "model/MetaNode.h"
#include "model/FileInfo.h"
#include "platform/SharedText.h"
#include "model/NodeList.h"

#include <QRectF>

#include <cstdint>
#include <string>

namespace LibraryBrowser {

// The root of the manifest node classes: every object of the repository has
// a unique path, its identity across the repository.
class TandrilObjectImpl : public Node {
    TDLB_NODE_CLASS_BODY(TandrilObjectImpl)
    TDLB_TandrilObjectImpl_OWN(TDLB_DECLARE_PROPERTY)

public:
    TandrilObjectImpl() = default;
    explicit TandrilObjectImpl(Model* model) : Node(model) {}
};

} // namespace LibraryBrowser
