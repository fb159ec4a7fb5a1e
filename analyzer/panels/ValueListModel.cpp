#include <analyzer/panels/ValueListModel.h>
#include <analyzer/panels/plainToolTip.h>

#include <dataviews/platform/data/variantDisplayText.h>

#include <utility>

namespace analyzer {

namespace {

/// In full, so that different values read differently.
QString textOf(const Variant& value)
{
    return QString::fromStdString(value.isEmpty() ? variantDisplayText(value) : value.toString());
}

} // namespace

ValueListModel::ValueListModel(Values values, QObject* parent)
    : QAbstractListModel(parent)
    , m_values(std::move(values))
    , m_checked(m_values->size(), false)
{}

void ValueListModel::setChecked(const std::set<Variant>& values)
{
    // Both are in ascending order.
    auto next = values.begin();
    for (std::size_t row = 0; row < m_values->size(); ++row) {
        while (next != values.end() && *next < (*m_values)[row]) {
            ++next;
        }
        m_checked[row] = next != values.end() && *next == (*m_values)[row];
    }
    if (!m_values->empty()) {
        Q_EMIT dataChanged(index(0), index(rowCount() - 1), {Qt::CheckStateRole});
    }
}

const Variant& ValueListModel::value(const QModelIndex& index) const
{
    return (*m_values)[static_cast<std::size_t>(index.row())];
}

int ValueListModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_values->size());
}

QVariant ValueListModel::data(const QModelIndex& index, int role) const
{
    switch (role) {
    case Qt::DisplayRole:
        return textOf(value(index)).simplified();
    case Qt::ToolTipRole:
        return plainToolTip(textOf(value(index)));
    case Qt::CheckStateRole:
        return m_checked[static_cast<std::size_t>(index.row())] ? Qt::Checked : Qt::Unchecked;
    default:
        return {};
    }
}

bool ValueListModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (role != Qt::CheckStateRole) {
        return false;
    }
    Q_EMIT toggled(index.row(), value.toInt() == Qt::Checked);
    return true;
}

Qt::ItemFlags ValueListModel::flags(const QModelIndex& index) const
{
    return QAbstractListModel::flags(index) | Qt::ItemIsUserCheckable | Qt::ItemNeverHasChildren;
}

} // namespace analyzer
