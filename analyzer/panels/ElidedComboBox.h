#pragma once

#include <dataviews/common/models/ListModelInterface.h>

#include <QComboBox>

#include <boost/shared_ptr.hpp>

#include <string>

namespace analyzer {

class ChooserPopup;

/// A combo box that stays narrow, cuts a text that does not fit with an ellipsis, and lets people search a long list.
///
/// A list that is not long opens as in any combo box, and so does that of a box with a text to edit.
class ElidedComboBox : public QComboBox
{
public:
    explicit ElidedComboBox(QWidget* parent = nullptr);

    /// Where the text is cut; in the middle unless set.
    void setElideMode(Qt::TextElideMode mode);

    void showPopup() override;
    void hidePopup() override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void choose(unsigned long long choice);

    Qt::TextElideMode m_elideMode = Qt::ElideMiddle; // names of one study often begin alike
    ChooserPopup* m_chooser = nullptr; ///< once it was needed
    boost::shared_ptr<ListModelInterface<std::string>> m_choices; ///< the items when it was opened
};

} // namespace analyzer
