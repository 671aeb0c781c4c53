#pragma once

#include <string>
#include <vector>

// Where the wave files an instrument names are found. Any thread; reads the
// file system but changes nothing.

// The text after the last '/' or '\' of a path: paths may come from any
// machine, whichever separator it uses.
std::string SampleFileName(const std::string& path);

// The name shown for a sample: its file name without the last four
// characters, the extension.
std::string SampleDisplayName(const std::string& path);

// The bundled drum kit: the source tree's resources/sounds when the program
// runs from its build, else the installed copy; empty when neither exists.
std::string BundledSoundFolder();

// Where wave files are looked for when nothing else says where: ~/sounds if
// it exists, else the bundled kit, else the home folder.
std::string DefaultSoundFolder();

// The path a wave file named in an instrument file is opened under. A path
// that exists is kept. Otherwise its file name is looked for beside the
// instrument file, then in the default sound folder, then in the bundled
// kit. When none has it, the path is returned unchanged and fails to load.
std::string ResolveSamplePath(const std::string& path, const std::string& instrumentFile);

// The folders where ResolveSamplePath looks for a wave file that is not at
// its own path, in its order; a folder that does not exist is left out.
std::vector<std::string> SampleSearchFolders(const std::string& instrumentFile);
