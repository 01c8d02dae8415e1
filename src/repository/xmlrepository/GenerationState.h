#pragma once

#include "model/Model.h"
#include "platform/ZipArchive.h"

#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace LibraryBrowser {

// What the generation of one product has collected so far: the files made
// in the temporary directory, the manifests of the subsystems walked, the
// library references met, and the archives open on their temporary copies.
// It never outlives the product it was filled for.
class GenerationState {
public:
    // The children's model of a subsystem or library; a later one for the
    // same node replaces the earlier.
    void storeSubSystemModel(SubSystemImpl* node, ModelPtr model);
    const std::vector<std::pair<SubSystemImpl*, ModelPtr>>& subSystemModels() const { return m_subSystemModels; }
    // Both specs of a node that a library reference may point at, by path.
    void enterSpecs(const std::string& path, const std::string& directorySpec, const std::string& manifestFileSpec);
    // Empties all but the archives, which belong to the publish step.
    void clear();

    std::vector<std::string> manifestFiles;
    std::vector<std::string> iconFiles;
    std::vector<LibraryRefImpl*> libraryRefs;
    std::unordered_map<std::string, std::string> directorySpecs;
    std::unordered_map<std::string, std::string> manifestFileSpecs;
    ZipArchive iconsArchive;
    ZipArchive manifestsArchive;

private:
    std::vector<std::pair<SubSystemImpl*, ModelPtr>> m_subSystemModels;
    std::unordered_map<SubSystemImpl*, std::size_t> m_subSystemIndex;
};

} // namespace LibraryBrowser
