#pragma once

#include <QString>
#include <QWidget>

class QProgressBar;
class QPushButton;
class QTableWidget;

namespace analyzer {

struct TablePreview;
class ElidedLabel;

/// The first rows of a study while the others are being read, with how far that is and a button to stop it.
class StudyPreview : public QWidget
{
    Q_OBJECT

public:
    explicit StudyPreview(QWidget* parent = nullptr);

    /// Forgets what it shows, for another study called \p name.
    void start(const QString& name);

    void setTable(const TablePreview& table);

    /// \p fraction is from 0 to 1.
    void setFraction(double fraction);

    /// Columns that are shown; nobody reads more of them in passing.
    static constexpr int maxColumns = 50;

Q_SIGNALS:
    /// The user wants no more of it.
    void cancelled();

private:
    void cancel();

    ElidedLabel* m_title;
    QProgressBar* m_bar;
    QPushButton* m_cancel;
    QTableWidget* m_table;
};

} // namespace analyzer
