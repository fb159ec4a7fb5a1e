#include <analyzer/export/ReplacementFile.h>

#include <dataviews/platform/property/ExceptionBase.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>
#include <stdexcept>
#include <string>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using analyzer::ReplacementFile;

namespace {

/// As on a disk that is nearly full: files larger than some bytes cannot be written.
class SmallFilesOnly
{
public:
    explicit SmallFilesOnly(rlim_t bytes)
        : m_handler(std::signal(SIGXFSZ, SIG_IGN))
    {
        if (getrlimit(RLIMIT_FSIZE, &m_before) != 0) {
            throw std::runtime_error("no limit");
        }
        rlimit limit = m_before;
        limit.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &limit);
    }

    SmallFilesOnly(const SmallFilesOnly&) = delete;
    SmallFilesOnly& operator=(const SmallFilesOnly&) = delete;

    ~SmallFilesOnly()
    {
        setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }

private:
    rlimit m_before = {};
    void (*m_handler)(int);
};

class ReplacementFileTest : public testing::Test
{
protected:
    [[nodiscard]] std::string path(const char* name) const
    {
        return m_folder.filePath(QString::fromUtf8(name)).toStdString();
    }

    static QByteArray content(const std::string& path)
    {
        QFile file(QString::fromStdString(path));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(not there)");
    }

    static void write(const std::string& path, const std::string& text)
    {
        ReplacementFile file(path);
        file.write(text.data(), text.size());
        file.commit();
    }

    /// The message of the error; empty without one.
    static std::string errorOf(const std::string& path, const std::string& text)
    {
        try {
            write(path, text);
        } catch (const ExceptionBase& error) {
            return error.what();
        }
        return {};
    }

    [[nodiscard]] QStringList files() const
    {
        return QDir(m_folder.path())
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
    }

    QTemporaryDir m_folder;
};

} // namespace

TEST_F(ReplacementFileTest, ReplacesTheOldFileOnlyAtTheEnd)
{
    const std::string target = path("a.csv");
    write(target, "old and longer");
    ASSERT_EQ(chmod(target.c_str(), 0640), 0);
    {
        ReplacementFile file(target);
        file.write("new", 3);
        EXPECT_EQ(content(target), "old and longer");

        file.commit();
    }

    EXPECT_EQ(content(target), "new");
    EXPECT_EQ(files(), QStringList{QStringLiteral("a.csv")});
    struct stat status = {};
    ASSERT_EQ(stat(target.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0640U);
}

TEST_F(ReplacementFileTest, LeavesTheOldFileWithoutACommit)
{
    const std::string target = path("a.csv");
    write(target, "old");
    {
        ReplacementFile file(target);
        file.write("new", 3);
    }

    EXPECT_EQ(content(target), "old");
    EXPECT_EQ(files(), QStringList{QStringLiteral("a.csv")});
}

TEST_F(ReplacementFileTest, LeavesTheOldFileWhenThereIsNoRoomForTheNewOne)
{
    const std::string target = path("a.csv");
    write(target, "old");
    std::string message;
    {
        const SmallFilesOnly limit(10000);
        message = errorOf(target, std::string(20000, 'x'));
    }

    EXPECT_NE(message.find('"' + target + '"'), std::string::npos) << message;
    EXPECT_EQ(content(target), "old");
    EXPECT_EQ(files(), QStringList{QStringLiteral("a.csv")});
}

TEST_F(ReplacementFileTest, FollowsALink)
{
    write(path("a.csv"), "old");
    ASSERT_EQ(symlink("a.csv", path("link.csv").c_str()), 0);

    write(path("link.csv"), "new");

    EXPECT_EQ(content(path("a.csv")), "new");
    struct stat status = {};
    ASSERT_EQ(lstat(path("link.csv").c_str(), &status), 0);
    EXPECT_TRUE(S_ISLNK(status.st_mode));
}

TEST_F(ReplacementFileTest, TakesNamesAsLongAsTheyCanBe)
{
    const std::string target = path((std::string(251, 'n') + ".csv").c_str());

    write(target, "new");

    EXPECT_EQ(content(target), "new");
}

TEST_F(ReplacementFileTest, TellsWhyAFileCannotBeWritten)
{
    const struct
    {
        std::string path;
        const char* reason;
    } cases[] = {
        {path("no folder/a.csv"), "there is no such file or folder"},
        {m_folder.path().toStdString(), "it is a folder"},
        {m_folder.path().toStdString() + '/', "it is a folder"},
        {"/dev/full", "the disk is full"},
        {path((std::string(300, 'n') + ".csv").c_str()), "the system says"},
        {"", "there is no such file or folder"},
    };

    for (const auto& bad : cases) {
        SCOPED_TRACE(bad.path);
        const std::string message = errorOf(bad.path, "text");
        EXPECT_NE(message.find('"' + bad.path + "\" cannot be written: "), std::string::npos)
            << message;
        EXPECT_NE(message.find(bad.reason), std::string::npos) << message;
        EXPECT_EQ(message.back(), '.');
    }
    struct stat status = {};
    ASSERT_EQ(stat("/dev/full", &status), 0);
    EXPECT_TRUE(S_ISCHR(status.st_mode));
    EXPECT_TRUE(files().isEmpty());
}

TEST_F(ReplacementFileTest, RespectsPermissions)
{
    if (geteuid() == 0) {
        GTEST_SKIP() << "nothing is forbidden to root";
    }
    const std::string target = path("a.csv");
    write(target, "old");

    ASSERT_EQ(chmod(target.c_str(), 0400), 0);
    EXPECT_NE(errorOf(target, "new").find("not allowed"), std::string::npos);
    ASSERT_EQ(chmod(target.c_str(), 0600), 0);
    ASSERT_EQ(chmod(m_folder.path().toLocal8Bit().constData(), 0500), 0);
    EXPECT_NE(errorOf(target, "new").find("not allowed"), std::string::npos);
    EXPECT_NE(errorOf(path("b.csv"), "new").find("not allowed"), std::string::npos);
    ASSERT_EQ(chmod(m_folder.path().toLocal8Bit().constData(), 0700), 0);

    EXPECT_EQ(content(target), "old");
}
