#pragma once

#include <analyzer/panels/ChooserFrame.h>
#include <analyzer/panels/ChooserModel.h>

#include <optional>

class QLabel;
class QLineEdit;
class QListView;

namespace analyzer {

/// A window to choose one of many texts in: a field to type a part of it, and below the texts that hold it.
///
/// The keyboard stays in the field: Up, Down and the page keys move in the list, Enter takes what is marked there, which
/// after typing is the first match; Escape and a click elsewhere close without a choice. Fields have the window's object
/// name with "-search" and "-list" in place of "-chooser".
class ChooserPopup : public ChooserFrame
{
    Q_OBJECT

public:
    /// Shorter lists are quicker to read than to search.
    static constexpr int minSearched = 12;

    /// \p parent is the field that it opens at, or around it.
    explicit ChooserPopup(QWidget* parent);

    /// Opens it at \p field, called \p name and for people \p label, with \p choices of which \p present is the one that
    /// is chosen now.
    void open(
        const QWidget& field,
        const QString& name,
        const QString& label,
        const ChooserModel::Choices& choices,
        std::optional<ChooserModel::Index> present);

Q_SIGNALS:
    /// The user has chosen the entry \p index of the choices; the window is closed.
    void chosen(ChooserModel::Index index);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void search(const QString& text);
    void mark(int row);
    void take(const QModelIndex& index);
    void place(const QWidget& field);

    ChooserModel* m_model;
    QLineEdit* m_search;
    QListView* m_list;
    QLabel* m_nothing;
};

} // namespace analyzer
