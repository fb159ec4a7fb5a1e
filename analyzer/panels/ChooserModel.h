#pragma once

#include <dataviews/common/models/ListModelInterface.h>

#include <dataviews/platform/signals/SignalConnectionCollection.h>

#include <QAbstractListModel>
#include <QString>
#include <QStringList>

#include <boost/shared_ptr.hpp>

#include <optional>
#include <string>
#include <vector>

namespace analyzer {

/// Those entries of a list model that hold a text, for Qt's views; the best matches first.
///
/// Case does not matter. First come entries that are the text, then those that begin with it, then the others, each in
/// the order of the list. Follows the list model when it changes.
class ChooserModel : public QAbstractListModel
{
    Q_OBJECT

public:
    using Choices = boost::shared_ptr<ListModelInterface<std::string>>;
    using Index = unsigned long long;

    explicit ChooserModel(QObject* parent = nullptr);

    /// Lists all of \p choices, of which \p present is the one that is chosen now.
    void setChoices(const Choices& choices, std::optional<Index> present);

    /// Lists the entries that hold \p text; blanks around it are of no matter.
    void search(const QString& text);

    /// The index in the list model of the entry in \p row, which must exist.
    [[nodiscard]] Index choice(int row) const { return m_found[static_cast<std::size_t>(row)]; }

    /// The row of the present entry, if it is listed.
    [[nodiscard]] std::optional<int> presentRow() const;

    /// The texts of all entries of the list model, on one line each.
    [[nodiscard]] const QStringList& texts() const { return m_texts; }

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;

    /// The present entry is bold; tool tips have the text in full.
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;

private:
    void takeTexts();
    void find();

    Choices m_choices;
    std::optional<Index> m_present;
    QStringList m_texts;
    QString m_search;
    std::vector<Index> m_found; ///< in the order of the rows
    SignalConnectionCollection m_connections;
};

} // namespace analyzer
