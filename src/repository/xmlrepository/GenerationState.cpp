#include "repository/xmlrepository/GenerationState.h"

namespace LibraryBrowser {

void GenerationState::storeSubSystemModel(SubSystemImpl* node, ModelPtr model)
{
    const auto found = m_subSystemIndex.find(node);
    if (found != m_subSystemIndex.end()) {
        m_subSystemModels[found->second].second = std::move(model);
        return;
    }
    m_subSystemIndex.emplace(node, m_subSystemModels.size());
    m_subSystemModels.emplace_back(node, std::move(model));
}

void GenerationState::enterSpecs(const std::string& path, const std::string& directorySpec,
                                 const std::string& manifestFileSpec)
{
    directorySpecs[path] = directorySpec;
    manifestFileSpecs[path] = manifestFileSpec;
}

void GenerationState::clear()
{
    manifestFiles.clear();
    iconFiles.clear();
    m_subSystemModels.clear();
    m_subSystemIndex.clear();
    libraryRefs.clear();
    directorySpecs.clear();
    manifestFileSpecs.clear();
}

} // namespace LibraryBrowser
