#pragma once

#include <QComboBox>

namespace analyzer {

/// A combo box that stays narrow and ends a text that does not fit with an ellipsis.
class ElidedComboBox : public QComboBox
{
public:
    explicit ElidedComboBox(QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace analyzer
