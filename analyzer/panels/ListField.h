#pragma once

#include <analyzer/panels/Attempt.h>
#include <analyzer/panels/ElidedComboBox.h>

#include <boost/shared_ptr.hpp>

namespace analyzer {

class CheckListPopup;
class ListSettingInterface;

/// Says in one line which names are chosen and opens a list to tick them in; every tick is a change of its own.
///
/// Has the setting's name as object name.
class ListField : public ElidedComboBox
{
    Q_OBJECT

public:
    ListField(boost::shared_ptr<ListSettingInterface> setting, Attempt attempt, QWidget* parent);

    /// Takes over what the setting says now.
    void showSetting();

    void showPopup() override;
    void hidePopup() override;

private:
    /// Chooses \p names beside those chosen, or no longer.
    void change(const QStringList& names, bool chosen);

    boost::shared_ptr<ListSettingInterface> m_setting;
    Attempt m_attempt;
    CheckListPopup* m_popup;
};

} // namespace analyzer
