#pragma once

#include <analyzer/panels/ChooserFrame.h>

#include <QStringList>

class QLabel;
class QLineEdit;
class QListWidget;
class QListWidgetItem;
class QPushButton;

namespace analyzer {

/// A window that lists names to tick, with a field that narrows the list down to those that hold a text.
///
/// Its fields have its own object name with "-filter", "-list", "-all" and "-none".
class CheckListPopup : public ChooserFrame
{
    Q_OBJECT

public:
    /// \p name becomes the object name with "-popup"; \p label names the list for people.
    CheckListPopup(const QString& name, const QString& label, QWidget* parent);

    /// Opens it at \p field, with \p names of which \p checked are ticked.
    void open(const QWidget& field, const QStringList& names, const QStringList& checked);

    /// Ticks \p checked and no others.
    void setChecked(const QStringList& checked);

Q_SIGNALS:
    /// The user ticked \p names, or took the ticks off.
    void toggled(const QStringList& names, bool checked);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void filter(const QString& text);
    void toggleFirstShown();
    void toggleAllShown(bool checked);
    void place(const QWidget& field);
    [[nodiscard]] QListWidgetItem* firstShown() const;

    QLineEdit* m_filter;
    QListWidget* m_list;
    QLabel* m_nothing;
    QPushButton* m_all;
    QPushButton* m_none;
};

} // namespace analyzer
