#include <analyzer/panels/TagTreeModel.h>
#include <analyzer/panels/plainToolTip.h>
#include <analyzer/views/countText.h>

#include <QFont>
#include <QGuiApplication>
#include <QPalette>

#include <algorithm>
#include <utility>

namespace analyzer {

namespace {

QString text(const std::string& name)
{
    return QString::fromStdString(name);
}

QString casesText(std::size_t count)
{
    return count == 1 ? TagTreeModel::tr("1 case")
                      : TagTreeModel::tr("%1 cases").arg(countText(count));
}

QString imagesText(std::size_t count)
{
    return count == 1 ? TagTreeModel::tr("1 image")
                      : TagTreeModel::tr("%1 images").arg(countText(count));
}

/// How many rows are in both sets, which are of one table.
std::size_t commonCount(const RowBitmap& left, const RowBitmap& right)
{
    std::size_t count = 0;
    for (std::size_t word = 0; word < left.words().size(); ++word) {
        count += static_cast<std::size_t>(
            __builtin_popcountll(left.words()[word] & right.words()[word]));
    }
    return count;
}

} // namespace

TagTreeModel::TagTreeModel(const TagEditor& editor, QObject* parent)
    : QAbstractItemModel(parent)
    , m_editor(editor)
{
    readTags();
}

void TagTreeModel::readTags()
{
    std::vector<Group> groups = presentGroups();
    if (isShown(groups)) {
        contentsChanged();
        return;
    }
    beginResetModel();
    m_groups = std::move(groups);
    m_contents.clear();
    for (const Group& group : m_groups) {
        m_contents.emplace_back(group.tags.size());
    }
    endResetModel();
}

std::vector<TagTreeModel::Group> TagTreeModel::presentGroups() const
{
    std::vector<Group> groups;
    std::size_t key = 0;
    for (const WeakPtr<TagGroup>& handle : m_editor.project().tagGroups()) {
        const boost::shared_ptr<TagGroup> present = handle.lock();
        Group group{present->name(), m_editor.isUserGroup(present->name()), {}};
        for (const std::string& tag : present->tags()) {
            const bool hasKey = group.isUsers && key < maxKeys;
            group.tags.push_back({tag, hasKey ? ++key : 0});
        }
        groups.push_back(std::move(group));
    }
    return groups;
}

bool TagTreeModel::isShown(const std::vector<Group>& groups) const
{
    const auto sameTag = [](const Tag& left, const Tag& right) {
        return left.name == right.name && left.key == right.key;
    };
    return std::equal(
        groups.begin(),
        groups.end(),
        m_groups.begin(),
        m_groups.end(),
        [&sameTag](const Group& left, const Group& right) {
            return left.name == right.name && left.isUsers == right.isUsers
                && std::equal(
                       left.tags.begin(),
                       left.tags.end(),
                       right.tags.begin(),
                       right.tags.end(),
                       sameTag);
        });
}

void TagTreeModel::setTarget(Target target)
{
    m_target = target;
    contentsChanged();
}

void TagTreeModel::setCases(RowBitmap rows)
{
    m_cases = std::move(rows);
    m_caseCount = m_cases.count();
    contentsChanged();
}

void TagTreeModel::setImages(TagEditor::Files images)
{
    m_images = std::move(images);
    contentsChanged();
}

std::size_t TagTreeModel::targetCount() const
{
    return m_target == Target::Cases ? m_caseCount : m_images.size();
}

void TagTreeModel::contentsChanged()
{
    for (std::size_t group = 0; group < m_groups.size(); ++group) {
        std::vector<std::optional<Content>>& contents = m_contents[group];
        std::fill(contents.begin(), contents.end(), std::nullopt);
        if (!contents.empty()) {
            const QModelIndex parent = index(static_cast<int>(group), 0);
            Q_EMIT dataChanged(
                index(0, 0, parent),
                index(static_cast<int>(contents.size()) - 1, ColumnCount - 1, parent));
        }
    }
}

TagTreeModel::Content TagTreeModel::read(const std::string& tag) const
{
    const Project& project = m_editor.project();
    Content content;
    const RowBitmap carrying = project.taggedCases(tag);
    content.cases = carrying.count();
    content.images = project.taggedAuxFileCount(tag);
    if (m_target == Target::Cases) {
        const bool isOfStudy = m_cases.rowCount() == carrying.rowCount();
        content.state = stateOf(isOfStudy ? commonCount(carrying, m_cases) : 0);
    } else {
        content.state = stateOf(static_cast<std::size_t>(std::count_if(
            m_images.begin(), m_images.end(), [&tag](const boost::shared_ptr<AuxFile>& image) {
                return image->hasOwnTag(tag);
            })));
    }
    return content;
}

Qt::CheckState TagTreeModel::stateOf(std::size_t carrying) const
{
    if (carrying == 0) {
        return Qt::Unchecked;
    }
    return carrying == targetCount() ? Qt::Checked : Qt::PartiallyChecked;
}

Qt::CheckState TagTreeModel::state(const std::string& tag) const
{
    return read(tag).state;
}

std::string TagTreeModel::groupAt(const QModelIndex& index) const
{
    if (!index.isValid()) {
        return {};
    }
    const QModelIndex group = index.internalId() == 0 ? index : index.parent();
    return m_groups[static_cast<std::size_t>(group.row())].name;
}

std::string TagTreeModel::tagAt(const QModelIndex& index) const
{
    if (!index.isValid() || index.internalId() == 0) {
        return {};
    }
    return m_groups[index.internalId() - 1].tags[static_cast<std::size_t>(index.row())].name;
}

QModelIndex TagTreeModel::find(const std::string& group, const std::string& tag) const
{
    for (int row = 0; row < rowCount(); ++row) {
        const QModelIndex parent = index(row, 0);
        if (tag.empty() && groupAt(parent) == group) {
            return parent;
        }
        for (int child = 0; child < rowCount(parent); ++child) {
            const QModelIndex place = index(child, 0, parent);
            if (tagAt(place) == tag) {
                return place;
            }
        }
    }
    return {};
}

QModelIndex TagTreeModel::index(int row, int column, const QModelIndex& parent) const
{
    if (row < 0 || row >= rowCount(parent) || column < 0 || column >= ColumnCount) {
        return {};
    }
    // 0 for a group, else the number of the tag's group from 1 up.
    const quintptr id = parent.isValid() ? static_cast<quintptr>(parent.row()) + 1 : 0;
    return createIndex(row, column, id);
}

QModelIndex TagTreeModel::parent(const QModelIndex& index) const
{
    if (!index.isValid() || index.internalId() == 0) {
        return {};
    }
    return createIndex(static_cast<int>(index.internalId()) - 1, 0, quintptr(0));
}

int TagTreeModel::rowCount(const QModelIndex& parent) const
{
    if (!parent.isValid()) {
        return static_cast<int>(m_groups.size());
    }
    if (parent.internalId() != 0 || parent.column() != 0) {
        return 0;
    }
    return static_cast<int>(m_groups[static_cast<std::size_t>(parent.row())].tags.size());
}

int TagTreeModel::columnCount(const QModelIndex& /*parent*/) const
{
    return ColumnCount;
}

const TagTreeModel::Content& TagTreeModel::content(const QModelIndex& index) const
{
    std::optional<Content>& content =
        m_contents[index.internalId() - 1][static_cast<std::size_t>(index.row())];
    if (!content) {
        content = read(tagAt(index));
    }
    return *content;
}

QVariant TagTreeModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid()) {
        return {};
    }
    if (index.internalId() == 0) {
        return groupData(m_groups[static_cast<std::size_t>(index.row())], index.column(), role);
    }
    const Group& group = m_groups[index.internalId() - 1];
    const Tag& tag = group.tags[static_cast<std::size_t>(index.row())];
    return tagData(group, tag, content(index), index.column(), role);
}

QVariant TagTreeModel::groupData(const Group& group, int column, int role) const
{
    if (role == Qt::ToolTipRole) {
        return plainToolTip(
            group.isUsers ? text(group.name)
                          : tr("%1 comes with the study and stays as it is").arg(text(group.name)));
    }
    if (column != NameColumn) {
        return {};
    }
    switch (role) {
    case Qt::DisplayRole:
        return text(group.name).simplified();
    case Qt::AccessibleTextRole:
        return group.isUsers ? text(group.name) : tr("%1, of the study").arg(text(group.name));
    case Qt::FontRole: {
        QFont bold = QGuiApplication::font();
        bold.setBold(true);
        return bold;
    }
    default:
        return {};
    }
}

QVariant TagTreeModel::tagData(
    const Group& group, const Tag& tag, const Content& content, int column, int role) const
{
    switch (role) {
    case Qt::ToolTipRole:
        if (column == KeyColumn && tag.key != 0) {
            return tr("The key %1 puts the tag on or takes it off").arg(tag.key);
        }
        return plainToolTip(text(tag.name) + QStringLiteral(": ") + countsText(content));
    case Qt::TextAlignmentRole:
        return column == NameColumn ? QVariant() : QVariant(Qt::AlignRight | Qt::AlignVCenter);
    case Qt::ForegroundRole:
        return column == NameColumn
            ? QVariant()
            : QVariant(QGuiApplication::palette().brush(QPalette::PlaceholderText));
    case Qt::CheckStateRole:
        return column == NameColumn && group.isUsers ? QVariant(content.state) : QVariant();
    case Qt::AccessibleTextRole: {
        if (column != NameColumn) {
            return {};
        }
        const QString described = text(tag.name) + QStringLiteral(", ") + countsText(content);
        return tag.key == 0 ? described : described + tr(", key %1").arg(tag.key);
    }
    case Qt::DisplayRole:
        break;
    default:
        return {};
    }
    switch (column) {
    case NameColumn:
        return text(tag.name).simplified();
    case CountColumn: {
        // What a reader tags is images; what else it is of can be told from the tool tip.
        const bool ofCases = group.isUsers ? m_target == Target::Cases : content.cases > 0;
        return countText(ofCases ? content.cases : content.images);
    }
    default:
        return tag.key == 0 ? QString() : QString::number(tag.key);
    }
}

QString TagTreeModel::countsText(const Content& content) const
{
    if (content.images == 0) {
        return casesText(content.cases);
    }
    return content.cases == 0
        ? imagesText(content.images)
        : casesText(content.cases) + QStringLiteral(", ") + imagesText(content.images);
}

bool TagTreeModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    const std::string tag = tagAt(index);
    if (tag.empty() || role != Qt::CheckStateRole) {
        return false;
    }
    Q_EMIT toggled(text(tag), value.toInt() == Qt::Checked);
    return true;
}

Qt::ItemFlags TagTreeModel::flags(const QModelIndex& index) const
{
    Qt::ItemFlags flags = QAbstractItemModel::flags(index);
    if (index.isValid() && index.column() == NameColumn && index.internalId() != 0
        && m_groups[index.internalId() - 1].isUsers) {
        flags |= Qt::ItemIsUserCheckable;
    }
    return flags;
}

} // namespace analyzer
