#pragma once

#include <QToolButton>

namespace analyzer {

/// The heading of a section of a panel, which the user expands and collapses by mouse or with the space bar.
///
/// Checked is expanded. Its object name is "section-" and the section's name.
class SectionHeading : public QToolButton
{
    Q_OBJECT

public:
    SectionHeading(const QString& section, QWidget* parent);

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace analyzer
