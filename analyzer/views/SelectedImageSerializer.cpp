#include <analyzer/views/SelectedImageSerializer.h>

#include <dataviews/platform/data/Project.h>

#include <QDir>
#include <QDomDocument>
#include <QDomElement>
#include <QFileInfo>

#include <boost/lexical_cast.hpp>

#include <utility>

namespace analyzer {

namespace {

/// So that a study may be elsewhere when it is opened again.
QString pathInStudy(const AuxFile& file)
{
    const QString table = QString::fromStdString(Project::project().filePath());
    return QFileInfo(table).dir().relativeFilePath(QString::fromStdString(file.filePath()));
}

QString fileAttribute()
{
    return QStringLiteral("File");
}

} // namespace

SelectedImageSerializer::SelectedImageSerializer(
    std::string name,
    boost::function<WeakPtr<AuxFile>()> get,
    boost::function<void(const WeakPtr<AuxFile>&)> set)
    : Serializer(std::move(name))
    , m_get(std::move(get))
    , m_set(std::move(set))
{}

void SelectedImageSerializer::serializeSelf(QDomElement& element) const
{
    const boost::shared_ptr<AuxFile> file = m_get().lock();
    if (!file) {
        return;
    }
    element.setAttribute(fileAttribute(), pathInStudy(*file));
    const QString caseID = QString::number(Project::project().caseID(file->row()));
    element.appendChild(element.ownerDocument().createTextNode(caseID));
}

void SelectedImageSerializer::deserializeSelf(const QDomElement& element)
{
    if (!element.hasAttribute(fileAttribute())) {
        return;
    }
    const QString path = element.attribute(fileAttribute());
    const auto caseID = boost::lexical_cast<unsigned long long>(element.text().toStdString());
    const Project& project = Project::project();
    const std::optional<std::size_t> row = project.row(caseID);
    if (!row) {
        return;
    }
    for (const boost::shared_ptr<AuxFile>& file : project.auxFiles(*row)) {
        if (pathInStudy(*file) == path) {
            m_set(file);
            return;
        }
    }
}

} // namespace analyzer
