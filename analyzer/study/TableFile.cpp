#include <analyzer/study/StudyError.h>
#include <analyzer/study/TableFile.h>

#include <algorithm>
#include <cerrno>
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
    case EACCES:
    case EPERM:
        return "you are not allowed to read it";
    default:
        return "the system says \"" + std::generic_category().message(error) + '"';
    }
}

std::string kindOf(mode_t mode)
{
    if (S_ISDIR(mode)) {
        return "a folder";
    }
    if (S_ISFIFO(mode)) {
        return "a pipe";
    }
    if (S_ISSOCK(mode)) {
        return "a socket";
    }
    return "a device";
}

void requireRegular(const std::string& path, const struct stat& status)
{
    if (!S_ISREG(status.st_mode)) {
        throw StudyError(path, "it is " + kindOf(status.st_mode) + ", not a file");
    }
}

} // namespace

TableFile::TableFile(std::string path, std::size_t chunkBytes)
    : m_path(std::move(path))
    , m_chunk(chunkBytes)
{
    struct stat status = {};
    if (stat(m_path.c_str(), &status) != 0) {
        throw StudyError(m_path, reasonOf(errno));
    }
    requireRegular(m_path, status);
    // The file may be another one by now, hence no waiting here either, and a second look.
    m_descriptor = open(m_path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (m_descriptor < 0) {
        throw StudyError(m_path, reasonOf(errno));
    }
    try {
        if (fstat(m_descriptor, &status) != 0) {
            throw StudyError(m_path, reasonOf(errno));
        }
        requireRegular(m_path, status);
    } catch (...) {
        close(m_descriptor);
        throw;
    }
    m_size = static_cast<std::size_t>(status.st_size);
    m_changedSeconds = status.st_mtim.tv_sec;
    m_changedNanoseconds = status.st_mtim.tv_nsec;
    m_end = m_size;
}

TableFile::~TableFile()
{
    close(m_descriptor);
}

void TableFile::start(std::size_t begin, std::size_t end)
{
    m_place = begin;
    m_end = end;
}

std::string_view TableFile::next()
{
    const std::size_t wanted = std::min(m_chunk.size(), m_end - m_place);
    if (wanted == 0) {
        return {};
    }
    const std::size_t got = readSome(m_place, m_chunk.data(), wanted);
    m_place += got;
    return {m_chunk.data(), got};
}

void TableFile::read(std::size_t place, char* bytes, std::size_t size) const
{
    while (size > 0) {
        const std::size_t got = readSome(place, bytes, size);
        place += got;
        bytes += got;
        size -= got;
    }
}

std::size_t TableFile::readSome(std::size_t place, char* bytes, std::size_t size) const
{
    ssize_t got = 0;
    do {
        got = pread(m_descriptor, bytes, size, static_cast<off_t>(place));
    } while (got < 0 && errno == EINTR);
    if (got < 0) {
        throw StudyError(m_path, reasonOf(errno));
    }
    if (got == 0) {
        throw StudyError(m_path, "the file became shorter while it was read");
    }
    return static_cast<std::size_t>(got);
}

void TableFile::requireUnchanged() const
{
    struct stat status = {};
    if (fstat(m_descriptor, &status) != 0) {
        throw StudyError(m_path, reasonOf(errno));
    }
    if (static_cast<std::size_t>(status.st_size) != m_size
        || status.st_mtim.tv_sec != m_changedSeconds
        || status.st_mtim.tv_nsec != m_changedNanoseconds) {
        throw StudyError(m_path, "the file changed while it was read");
    }
}

} // namespace analyzer
