#pragma once

#include <analyzer/tags/TagEditor.h>

#include <dataviews/platform/data/RowBitmap.h>

#include <QAbstractItemModel>

#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace analyzer {

/// The tag groups of the open study and under each its tags, with a tick that says how many of the cases or images that
/// the panel acts on carry the tag: all, some, or none.
///
/// A tick by the user is only told, by toggled(). The study's own tags have none. Reads what carries a tag when asked,
/// at most once between two changes.
class TagTreeModel : public QAbstractItemModel
{
    Q_OBJECT

public:
    /// What a tick acts on.
    enum class Target
    {
        Cases,
        Images
    };

    enum Column
    {
        NameColumn,
        CountColumn, ///< how many cases or images carry the tag
        KeyColumn, ///< the digit that ticks the tag
        ColumnCount
    };

    /// How many tags have a digit.
    static constexpr std::size_t maxKeys = 9;

    /// Shows what \p editor, which outlives the model, edits.
    explicit TagTreeModel(const TagEditor& editor, QObject* parent = nullptr);

    /// The tags or what carries them may have changed. Resets the model if the tags are others.
    void readTags();

    void setTarget(Target target);

    [[nodiscard]] Target target() const { return m_target; }

    /// The cases to act on.
    void setCases(RowBitmap rows);

    [[nodiscard]] const RowBitmap& cases() const { return m_cases; }

    /// The images to act on.
    void setImages(TagEditor::Files images);

    [[nodiscard]] const TagEditor::Files& images() const { return m_images; }

    /// How many cases or images there are to act on.
    [[nodiscard]] std::size_t targetCount() const;

    [[nodiscard]] Qt::CheckState state(const std::string& tag) const;

    /// The group at \p index, or that of the tag there; empty for an invalid index.
    [[nodiscard]] std::string groupAt(const QModelIndex& index) const;

    /// The tag at \p index; empty for a group or an invalid index.
    [[nodiscard]] std::string tagAt(const QModelIndex& index) const;

    /// Where \p tag is, or the group \p group if that is empty; invalid if it is nowhere.
    [[nodiscard]] QModelIndex find(const std::string& group, const std::string& tag) const;

    [[nodiscard]] QModelIndex index(
        int row, int column, const QModelIndex& parent = {}) const override;
    [[nodiscard]] QModelIndex parent(const QModelIndex& index) const override;
    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;

Q_SIGNALS:
    void toggled(const QString& tag, bool carry);

private:
    struct Tag
    {
        std::string name;
        std::size_t key = 0; ///< 0 for none
    };

    struct Group
    {
        std::string name;
        bool isUsers = false;
        std::vector<Tag> tags;
    };

    /// What of a tag changes while the tags stay.
    struct Content
    {
        std::size_t cases = 0;
        std::size_t images = 0;
        Qt::CheckState state = Qt::Unchecked;
    };

    [[nodiscard]] std::vector<Group> presentGroups() const;
    [[nodiscard]] bool isShown(const std::vector<Group>& groups) const;
    [[nodiscard]] QVariant groupData(const Group& group, int column, int role) const;
    [[nodiscard]] QVariant tagData(
        const Group& group, const Tag& tag, const Content& content, int column, int role) const;
    [[nodiscard]] QString countsText(const Content& content) const;
    [[nodiscard]] Content read(const std::string& tag) const;
    [[nodiscard]] Qt::CheckState stateOf(std::size_t carrying) const;
    [[nodiscard]] const Content& content(const QModelIndex& index) const;
    void contentsChanged();

    const TagEditor& m_editor;
    std::vector<Group> m_groups;
    mutable std::vector<std::vector<std::optional<Content>>> m_contents; ///< by group and tag
    Target m_target = Target::Cases;
    RowBitmap m_cases;
    std::size_t m_caseCount = 0; ///< in m_cases
    TagEditor::Files m_images;
};

} // namespace analyzer
