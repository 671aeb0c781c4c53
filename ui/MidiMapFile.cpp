#include "ui/MidiMapFile.h"

#include "engine/MidiMap.h"
#include "song/DiskFile.h"
#include "song/FileArchive.h"

#include <QFileInfo>
#include <QSettings>
#include <filesystem>

namespace {

// A map file larger than this is no map.
constexpr size_t MaxMapBytes = 1 << 20;

} // namespace

std::string MidiMapFile::DefaultPath() {
    const QSettings settings(QStringLiteral("oxbowlantern"), QStringLiteral("oxbowlantern"));
    return (QFileInfo(settings.fileName()).absolutePath() + QStringLiteral("/midi-map.txt"))
        .toStdString();
}

std::vector<std::string> MidiMapFile::Load(const std::string& path, MidiMap& map, bool required) {
    std::vector<std::string> messages;
    map.Clear();
    std::error_code missing;
    if (!required && !std::filesystem::exists(path, missing))
        return messages;
    try {
        const std::vector<uint8_t> bytes = ReadWholeFile(path, MaxMapBytes);
        for (const std::string& m : map.FromText(std::string(bytes.begin(), bytes.end())))
            messages.push_back(path + ": " + m);
    } catch (const FileError& e) {
        messages.push_back(e.what());
    }
    return messages;
}

std::string MidiMapFile::Save(const std::string& path, const MidiMap& map) {
    try {
        std::filesystem::create_directories(std::filesystem::path(path).parent_path());
        const std::string text = map.ToText();
        ReplacingFile file(path);
        file.Write(text.data(), text.size());
        file.Commit();
        return {};
    } catch (const FileError& e) {
        return e.what();
    } catch (const std::filesystem::filesystem_error& e) {
        return e.what();
    }
}
