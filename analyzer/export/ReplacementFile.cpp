#include <analyzer/export/ReplacementFile.h>

#include <dataviews/platform/property/ExceptionBase.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <memory>
#include <random>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace analyzer {

namespace {

std::string reasonOf(int error)
{
    switch (error) {
    case ENOENT:
        return "there is no such file or folder";
    case EISDIR:
        return "it is a folder";
    case EACCES:
    case EPERM:
    case EROFS:
        return "you are not allowed to write there";
    case ENOSPC:
    case EDQUOT:
        return "the disk is full";
    default:
        return "the system says \"" + std::generic_category().message(error) + '"';
    }
}

/// With its slash; empty for the current folder.
std::string folderOf(const std::string& path)
{
    return path.substr(0, path.rfind('/') + 1);
}

/// The file that \p path, which exists, leads to; \p path itself if that cannot be told.
std::string behindLinks(const std::string& path)
{
    const std::unique_ptr<char, void (*)(void*)> real(realpath(path.c_str(), nullptr), std::free);
    return real ? std::string(real.get()) : path;
}

} // namespace

ReplacementFile::ReplacementFile(std::string path)
    : m_path(std::move(path))
    , m_target(m_path)
{
    constexpr unsigned newFileMode = 0666; // less what the user's mask takes away
    if (m_path.empty()) {
        fail(ENOENT);
    }
    struct stat status = {};
    if (stat(m_path.c_str(), &status) != 0) {
        if (errno != ENOENT) {
            fail(errno);
        }
        openTemporary(newFileMode, false);
        return;
    }
    if (S_ISDIR(status.st_mode)) {
        fail(EISDIR);
    }
    if (!S_ISREG(status.st_mode)) {
        m_descriptor = open(m_path.c_str(), O_WRONLY | O_CLOEXEC);
        if (m_descriptor < 0) {
            fail(errno);
        }
        return;
    }
    // Renaming asks the folder only; a file that is protected shall stay.
    if (access(m_path.c_str(), W_OK) != 0) {
        fail(errno);
    }
    m_target = behindLinks(m_path);
    constexpr unsigned permissions = 0777;
    openTemporary(status.st_mode & permissions, true);
}

ReplacementFile::~ReplacementFile()
{
    if (m_descriptor >= 0) {
        close(m_descriptor);
    }
    if (!m_temporary.empty()) {
        unlink(m_temporary.c_str());
    }
}

void ReplacementFile::openTemporary(unsigned mode, bool keepMode)
{
    constexpr int attempts = 100;
    std::random_device random;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        // A name of its own length: the target's may be as long as names can be.
        const std::string name = folderOf(m_target) + ".dataviews-" + std::to_string(getpid()) + '-'
            + std::to_string(random()) + ".tmp";
        m_descriptor = open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
        if (m_descriptor >= 0) {
            if (keepMode && fchmod(m_descriptor, mode) != 0) {
                const int error = errno;
                closeFile();
                unlink(name.c_str());
                fail(error);
            }
            m_temporary = name;
            return;
        }
        if (errno != EEXIST) {
            fail(errno);
        }
    }
    fail(EEXIST);
}

void ReplacementFile::write(const char* data, std::size_t size)
{
    while (size > 0) {
        const ssize_t written = ::write(m_descriptor, data, size);
        if (written >= 0) {
            data += written;
            size -= static_cast<std::size_t>(written);
        } else if (errno != EINTR) {
            fail(errno);
        }
    }
}

void ReplacementFile::commit()
{
    // Pipes, terminals and some file systems have nothing to bring to a disk.
    if (fsync(m_descriptor) != 0 && errno != EINVAL && errno != ENOTSUP) {
        fail(errno);
    }
    closeFile();
    if (m_temporary.empty()) {
        return;
    }
    if (rename(m_temporary.c_str(), m_target.c_str()) != 0) {
        fail(errno);
    }
    m_temporary.clear();
    // The new name too. The file is whole either way, so an error does not matter.
    const std::string folder = folderOf(m_target);
    const int descriptor =
        open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor >= 0) {
        fsync(descriptor);
        close(descriptor);
    }
}

void ReplacementFile::closeFile()
{
    if (close(std::exchange(m_descriptor, -1)) != 0 && errno != EINTR) {
        fail(errno);
    }
}

void ReplacementFile::fail(int error) const
{
    const auto isControl = [](char byte) {
        constexpr unsigned char firstPrintable = 0x20;
        return static_cast<unsigned char>(byte) < firstPrintable;
    };
    std::string shown = m_path;
    std::replace_if(shown.begin(), shown.end(), isControl, ' ');
    throw ExceptionBase("The file \"" + shown + "\" cannot be written: " + reasonOf(error) + '.');
}

} // namespace analyzer
