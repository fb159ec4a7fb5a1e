#pragma once

#include <dataviews/platform/signals/SignalConnectionCollection.h>

#include <QWidget>

#include <boost/shared_ptr.hpp>

class QLabel;
class QLineEdit;
class QListView;
class QPushButton;
class QSortFilterProxyModel;

namespace analyzer {

class ListedFilter;
class ValueListModel;

/// A list to tick the values of a filter in, with a field to find values by a part of their text.
///
/// Every tick is a change of its own; the buttons change all values that are listed at once.
class ValueFilterField : public QWidget
{
    Q_OBJECT

public:
    /// \p filter is one by values.
    ValueFilterField(boost::shared_ptr<ListedFilter> filter, QWidget* parent);

    /// Object names: \p prefix with "-search", "-values", "-all", "-none" and "-count".
    void setNames(const QString& prefix);

    /// Puts the controls behind \p before and gives the last one.
    QWidget* placeInTabOrder(QWidget* before);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void showValues();
    void setListed(bool checked);

    boost::shared_ptr<ListedFilter> m_filter;
    ValueListModel* m_model;
    QSortFilterProxyModel* m_listed;
    QLineEdit* m_search;
    QListView* m_list;
    QPushButton* m_all;
    QPushButton* m_none;
    QLabel* m_count;
    SignalConnectionCollection m_connections;
};

} // namespace analyzer
