#include "song/SamplePath.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>

namespace fs = std::filesystem;

namespace {

bool IsFile(const std::string& path) {
    std::error_code error;
    return !path.empty() && fs::is_regular_file(path, error);
}

bool IsFolder(const std::string& path) {
    std::error_code error;
    return !path.empty() && fs::is_directory(path, error);
}

std::string HomeFolder() {
    const char* home = std::getenv("HOME");
    return home != nullptr && *home != '\0' ? home : "/";
}

} // namespace

std::string SampleFileName(const std::string& path) {
    const size_t separator = path.find_last_of("/\\");
    return separator == std::string::npos ? path : path.substr(separator + 1);
}

// A name of four characters or fewer is shown whole: cutting it would leave
// nothing to tell the sample by.
std::string SampleDisplayName(const std::string& path) {
    const std::string name = SampleFileName(path);
    return name.size() > 4 ? name.substr(0, name.size() - 4) : name;
}

// The source tree comes first, so a build run from its tree finds the kit
// even where an older version is installed.
std::string BundledSoundFolder() {
    for (const char* folder : {OX_SOURCE_DIR "/resources/sounds", OX_DATA_DIR "/sounds"})
        if (IsFolder(folder))
            return folder;
    return std::string();
}

std::string DefaultSoundFolder() {
    const std::string own = HomeFolder() + "/sounds";
    if (IsFolder(own))
        return own;
    const std::string bundled = BundledSoundFolder();
    return bundled.empty() ? HomeFolder() : bundled;
}

// The bundled kit is asked last as well: with a ~/sounds of their own, a
// performer still hears the demo instrument, which names the kit's files.
std::string ResolveSamplePath(const std::string& path, const std::string& instrumentFile) {
    const std::string name = SampleFileName(path);
    if (IsFile(path) || name.empty())
        return path;
    for (const std::string& folder : SampleSearchFolders(instrumentFile)) {
        const std::string candidate = folder + "/" + name;
        if (IsFile(candidate))
            return candidate;
    }
    return path;
}

std::vector<std::string> SampleSearchFolders(const std::string& instrumentFile) {
    const std::string beside = fs::path(instrumentFile).parent_path().string();
    std::vector<std::string> folders;
    for (const std::string& folder :
         {beside.empty() ? std::string(".") : beside, DefaultSoundFolder(), BundledSoundFolder()})
        if (IsFolder(folder) && std::find(folders.begin(), folders.end(), folder) == folders.end())
            folders.push_back(folder);
    return folders;
}
