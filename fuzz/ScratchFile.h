#pragma once

#include <QByteArray>
#include <QFile>
#include <QTemporaryDir>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

/// One file of a folder of its own, which holds the input of the moment.
class ScratchFile
{
public:
    explicit ScratchFile(const char* name)
        : m_path(m_folder.filePath(QString::fromLatin1(name)))
    {}

    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;
    ~ScratchFile() = default;

    void write(const std::uint8_t* data, std::size_t size)
    {
        QFile file(m_path);
        if (!file.open(QIODevice::WriteOnly)
            || file.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size))
                != static_cast<qint64>(size)) {
            std::abort(); // without its file nothing is tried
        }
    }

    /// UTF-8.
    [[nodiscard]] std::string path() const { return m_path.toStdString(); }

private:
    QTemporaryDir m_folder;
    QString m_path;
};
