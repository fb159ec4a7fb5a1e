#pragma once

#include <dataviews/platform/data/Variant.h>

#include <QAbstractListModel>

#include <boost/shared_ptr.hpp>

#include <set>
#include <vector>

namespace analyzer {

/// Values to tick, for a list of any length: there is no object for a value.
///
/// A tick by the user is only told, by toggled(); setChecked() shows it.
class ValueListModel : public QAbstractListModel
{
    Q_OBJECT

public:
    using Values = boost::shared_ptr<const std::vector<Variant>>;

    /// \p values are in ascending order.
    ValueListModel(Values values, QObject* parent);

    /// Ticks \p values and no others.
    void setChecked(const std::set<Variant>& values);

    [[nodiscard]] const Variant& value(const QModelIndex& index) const;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;

Q_SIGNALS:
    void toggled(int row, bool checked);

private:
    Values m_values;
    std::vector<bool> m_checked;
};

} // namespace analyzer
