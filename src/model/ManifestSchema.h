#pragma once

// The manifest schema in one place. Each node class is listed with the
// properties it introduces, in registration order; a class's full property
// list is its ancestors' lists followed by its own. The node classes, their
// meta nodes, copies and the serializer are all generated from these lists.
//
// X(name, Name, Type, default, structural)
//   name        property name, also the key in a manifest file
//   Name        the same with its first letter in upper case (getName/setName)
//   structural  true for properties that hold node pointers: they mean
//               nothing in another model, so non-structural copies skip them
// SharedText is for text that every block of a product holds alike.

#define TDLB_TandrilObjectImpl_OWN(X)                                   \
    X(uniquePath, UniquePath, StringId, StringId(), false)              \
    X(isInvalid, IsInvalid, bool, false, false)

#define TDLB_BlockImpl_OWN(X)                                           \
    X(path, Path, std::string, std::string(), false)                    \
    X(name, Name, std::string, std::string(), false)                    \
    X(displayName, DisplayName, std::string, std::string(), false)      \
    X(displayPath, DisplayPath, std::string, std::string(), false)      \
    X(iconFileSpec, IconFileSpec, std::string, std::string(), false)    \
    X(description, Description, std::string, std::string(), false)      \
    X(position, Position, QRectF, QRectF(), false)                      \
    X(reposDirectorySpec, ReposDirectorySpec, std::string, std::string(), false) \
    X(reposManifestsArchiveSpec, ReposManifestsArchiveSpec, SharedText, SharedText(), false) \
    X(reposIconsArchiveSpec, ReposIconsArchiveSpec, SharedText, SharedText(), false) \
    X(productName, ProductName, std::string, std::string(), false)      \
    X(treeIcon, TreeIcon, std::string, std::string(), false)            \
    X(panelIcon, PanelIcon, std::string, std::string(), false)

#define TDLB_SubSystemImpl_OWN(X)                                       \
    X(isFlat, IsFlat, bool, true, false)                                \
    X(isEmpty, IsEmpty, bool, true, false)                              \
    X(directorySpec, DirectorySpec, std::string, std::string(), false)  \
    X(manifestFileSpec, ManifestFileSpec, std::string, std::string(), false)

#define TDLB_LibraryImpl_OWN(X)                                         \
    X(isProduct, IsProduct, bool, true, false)                          \
    X(isTopLevel, IsTopLevel, bool, false, false)                       \
    X(modelFileSpec, ModelFileSpec, std::string, std::string(), false)  \
    X(modelFileCheckSum, ModelFileCheckSum, std::string, std::string(), false) \
    X(modelFileSize, ModelFileSize, std::int64_t, 0, false)             \
    X(modelFileDate, ModelFileDate, std::int32_t, 0, false)             \
    X(shadowedLastModified, ShadowedLastModified, std::string, std::string(), false) \
    X(lastModified, LastModified, std::string, std::string(), false)    \
    X(product, Product, LibraryImplPointer, nullptr, true)                    \
    X(fileDependencies, FileDependencies, FileInfoVector, FileInfoVector(), false) \
    X(children, Children, StringVector, StringVector(), false)          \
    X(dependencies, Dependencies, LibraryImplList, LibraryImplList(), true)

#define TDLB_LibraryRefImpl_OWN(X)                                      \
    X(libraryRefName, LibraryRefName, std::string, std::string(), false) \
    X(libraryRefPath, LibraryRefPath, std::string, std::string(), false) \
    X(libraryRefUniquePath, LibraryRefUniquePath, std::string, std::string(), false)

#define TDLB_PaletteImpl_OWN(X)

// Full property lists, ancestors first.
#define TDLB_TandrilObjectImpl_ALL(X) TDLB_TandrilObjectImpl_OWN(X)
#define TDLB_BlockImpl_ALL(X) TDLB_TandrilObjectImpl_ALL(X) TDLB_BlockImpl_OWN(X)
#define TDLB_SubSystemImpl_ALL(X) TDLB_BlockImpl_ALL(X) TDLB_SubSystemImpl_OWN(X)
#define TDLB_LibraryImpl_ALL(X) TDLB_SubSystemImpl_ALL(X) TDLB_LibraryImpl_OWN(X)
#define TDLB_LibraryRefImpl_ALL(X) TDLB_SubSystemImpl_ALL(X) TDLB_LibraryRefImpl_OWN(X)
#define TDLB_PaletteImpl_ALL(X) TDLB_LibraryImpl_ALL(X) TDLB_PaletteImpl_OWN(X)

// X(Class, Parent) for every node class, in registration order.
#define TDLB_NODE_CLASSES(X)                    \
    X(TandrilObjectImpl, Node)                  \
    X(BlockImpl, TandrilObjectImpl)             \
    X(SubSystemImpl, BlockImpl)                 \
    X(LibraryImpl, SubSystemImpl)               \
    X(LibraryRefImpl, SubSystemImpl)            \
    X(PaletteImpl, LibraryImpl)

// Inside a class body: field, getter and setters of one property. Setters
// mark the node dirty only when the value changes (containers always do);
// the second takes over a value that its caller no longer needs.
#define TDLB_DECLARE_PROPERTY(name, Name, Type, def, structural)        \
public:                                                                 \
    const Type& get##Name() const { return m_##name; }                  \
    void set##Name(const Type& value) { assignProperty(m_##name, value); } \
    void set##Name(Type&& value) { assignProperty(m_##name, std::move(value)); } \
protected:                                                              \
    Type m_##name = def;

// Inside a class body: the generated members common to every node class.
#define TDLB_NODE_CLASS_BODY(Class)                                     \
public:                                                                 \
    static const StringId& staticGetTypeName();                         \
    static const MetaNode& staticMetaNode();                            \
    const StringId& getTypeName() const override { return staticGetTypeName(); } \
    const MetaNode& metaNode() const override { return staticMetaNode(); } \
    std::unique_ptr<Node> clone() const override;                       \
    void copyPropertiesFromNode(const Node* source) override;           \
    void copyNonStructuralPropertiesFromNode(const Node* source) override; \
    void copyPropertiesFromNode(const Class* source) { copyFrom(*source, true); } \
    void copyNonStructuralPropertiesFromNode(const Class* source) { copyFrom(*source, false); } \
private:                                                                \
    void copyFrom(const Class& source, bool structuralToo);

// In the class's source file: definitions of the members declared above.
#define TDLB_COPY_PROPERTY(name, Name, Type, def, structural)           \
    if (structuralToo || !(structural))                                 \
        set##Name(source.get##Name());

#define TDLB_DEFINE_NODE_CLASS(Class, Parent)                           \
    const StringId& Class::staticGetTypeName()                          \
    {                                                                   \
        static const StringId id(#Class);                               \
        return id;                                                      \
    }                                                                   \
    const MetaNode& Class::staticMetaNode()                             \
    {                                                                   \
        static const MetaNode& meta = *MetaModel::instance().metaNode(staticGetTypeName()); \
        return meta;                                                    \
    }                                                                   \
    std::unique_ptr<Node> Class::clone() const                          \
    {                                                                   \
        auto copy = std::make_unique<Class>();                          \
        copy->copyPropertiesFromNode(this);                             \
        return copy;                                                    \
    }                                                                   \
    void Class::copyPropertiesFromNode(const Node* source)              \
    {                                                                   \
        if (auto* same = dynamic_cast<const Class*>(source))            \
            copyFrom(*same, true);                                      \
        else                                                            \
            Parent::copyPropertiesFromNode(source);                     \
    }                                                                   \
    void Class::copyNonStructuralPropertiesFromNode(const Node* source) \
    {                                                                   \
        if (auto* same = dynamic_cast<const Class*>(source))            \
            copyFrom(*same, false);                                     \
        else                                                            \
            Parent::copyNonStructuralPropertiesFromNode(source);        \
    }                                                                   \
    void Class::copyFrom(const Class& source, bool structuralToo)       \
    {                                                                   \
        TDLB_##Class##_ALL(TDLB_COPY_PROPERTY)                          \
    }
