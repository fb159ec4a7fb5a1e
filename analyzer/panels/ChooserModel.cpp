#include <analyzer/panels/ChooserModel.h>
#include <analyzer/panels/plainToolTip.h>

#include <QFont>

#include <algorithm>
#include <array>

namespace analyzer {

ChooserModel::ChooserModel(QObject* parent)
    : QAbstractListModel(parent)
{}

void ChooserModel::setChoices(const Choices& choices, std::optional<Index> present)
{
    m_connections.clear();
    m_choices = choices;
    m_present = present;
    m_search.clear();
    m_connections.add(choices->signalModelChanged.connect([this] { takeTexts(); }));
    m_connections.add(choices->signalDataChanged.connect([this](Index) { takeTexts(); }));
    takeTexts();
}

void ChooserModel::search(const QString& text)
{
    m_search = text.simplified();
    beginResetModel();
    find();
    endResetModel();
}

void ChooserModel::takeTexts()
{
    beginResetModel();
    m_texts.clear();
    for (Index index = 0; index < m_choices->size(); ++index) {
        m_texts.append(QString::fromStdString(m_choices->displayString(index)).simplified());
    }
    find();
    endResetModel();
}

void ChooserModel::find()
{
    enum Rank : std::size_t
    {
        Equal,
        Beginning,
        Within,
        RankCount
    };

    std::array<std::vector<Index>, RankCount> ranks;
    for (int number = 0; number < m_texts.size(); ++number) {
        const QString& text = m_texts[number];
        const int place = text.indexOf(m_search, 0, Qt::CaseInsensitive);
        if (place < 0) {
            continue;
        }
        // Without a search all entries begin with it, and keep their order.
        const Rank rank = place > 0                                 ? Within
            : text.size() == m_search.size() && !m_search.isEmpty() ? Equal
                                                                    : Beginning;
        ranks[rank].push_back(static_cast<Index>(number));
    }
    m_found.clear();
    for (const std::vector<Index>& rank : ranks) {
        m_found.insert(m_found.end(), rank.begin(), rank.end());
    }
}

std::optional<int> ChooserModel::presentRow() const
{
    const auto place =
        m_present ? std::find(m_found.begin(), m_found.end(), *m_present) : m_found.end();
    return place == m_found.end() ? std::nullopt
                                  : std::optional<int>(static_cast<int>(place - m_found.begin()));
}

int ChooserModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_found.size());
}

QVariant ChooserModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount()) {
        return {};
    }
    const bool isPresent = m_present == choice(index.row());
    const QString& text = m_texts[static_cast<int>(choice(index.row()))];
    switch (role) {
    case Qt::DisplayRole:
        return text;
    case Qt::ToolTipRole:
        return plainToolTip(text);
    case Qt::AccessibleTextRole:
        return isPresent ? tr("%1, chosen").arg(text) : text;
    case Qt::FontRole:
        if (isPresent) {
            QFont font;
            font.setBold(true);
            return font;
        }
        return {};
    default:
        return {};
    }
}

} // namespace analyzer
