#include "song/DiskFile.h"

#include "song/FileArchive.h"

#include <atomic>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// The cause of a failed call in a performer's words.
std::string Cause(int error) {
    switch (error) {
    case ENOENT:
        return "the file or its folder does not exist";
    case EACCES:
    case EPERM:
        return "there is no permission for it";
    case ENOSPC:
    case EDQUOT:
        return "the disk is full";
    case EROFS:
        return "the disk is read-only";
    case EISDIR:
        return "it is a folder";
    default:
        return std::strerror(error);
    }
}

// A name beside the target that no other save of this process uses at once.
std::string TempName(const std::string& target) {
    static std::atomic<uint32_t> serial{0};
    return target + ".part-" + std::to_string(static_cast<long>(getpid())) + "-" +
           std::to_string(serial.fetch_add(1));
}

} // namespace

std::vector<uint8_t> ReadWholeFile(const std::string& path, size_t limit) {
    const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        throw FileError(path, "cannot be opened: " + Cause(errno));
    struct stat info {};
    if (fstat(fd, &info) != 0 || !S_ISREG(info.st_mode)) {
        close(fd);
        throw FileError(path, "is not a file that can be read");
    }
    if (static_cast<uint64_t>(info.st_size) > limit) {
        close(fd);
        throw FileError(path, "is far too large to be an instrument file");
    }
    std::vector<uint8_t> bytes(static_cast<size_t>(info.st_size));
    size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t n = read(fd, bytes.data() + done, bytes.size() - done);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0) {
            const int error = n < 0 ? errno : 0;
            close(fd);
            throw FileError(path, error != 0 ? "cannot be read: " + Cause(error)
                                             : "became shorter while it was read");
        }
        done += static_cast<size_t>(n);
    }
    close(fd);
    return bytes;
}

ReplacingFile::ReplacingFile(std::string path) : target(std::move(path)) {
    // Mode 0666 before the umask, as any new file, not the 0600 of mkstemp.
    for (int attempt = 0; attempt < 100 && fd < 0; ++attempt) {
        temp = TempName(target);
        fd = open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (fd < 0 && errno != EEXIST)
            break;
    }
    if (fd < 0) {
        const int error = errno;
        temp.clear();
        Fail("cannot be written", error);
    }
}

ReplacingFile::~ReplacingFile() {
    if (fd >= 0)
        close(fd);
    if (!committed && !temp.empty())
        unlink(temp.c_str());
}

void ReplacingFile::Fail(const std::string& doing, int error) {
    throw FileError(target, doing + ": " + Cause(error) + "; a file that stood there is kept");
}

void ReplacingFile::Write(const void* data, size_t n) {
    const uint8_t* at = static_cast<const uint8_t*>(data);
    while (n > 0) {
        const ssize_t written = write(fd, at, n);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            Fail("cannot be written", written < 0 ? errno : ENOSPC);
        at += written;
        n -= static_cast<size_t>(written);
    }
}

void ReplacingFile::Commit() {
    if (fsync(fd) != 0)
        Fail("cannot be written", errno);
    const int closed = close(fd);
    fd = -1;
    if (closed != 0)
        Fail("cannot be written", errno);
    if (rename(temp.c_str(), target.c_str()) != 0)
        Fail("cannot replace the file", errno);
    committed = true;
}
