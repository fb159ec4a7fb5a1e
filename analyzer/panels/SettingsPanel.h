#pragma once

#include <dataviews/platform/signals/SignalConnectionCollection.h>

#include <QWidget>

#include <boost/function.hpp>
#include <boost/shared_ptr.hpp>

class QFormLayout;
class QLabel;

namespace analyzer {

class AnalyzerViewInterface;
class SettingInterface;
class VerticalScrollArea;

/// Edits the settings of the view that is active.
///
/// Each setting is a row, grey while it has no effect; the field has the setting's name as object name. A value that is
/// refused is said above the fields and changes nothing.
class SettingsPanel : public QWidget
{
    Q_OBJECT

public:
    explicit SettingsPanel(QWidget* parent = nullptr);
    SettingsPanel(const SettingsPanel&) = delete;
    SettingsPanel& operator=(const SettingsPanel&) = delete;
    ~SettingsPanel() override;

    /// Shows the settings of \p view, or that there are none for an empty pointer. The panel does not keep the view.
    void setView(const boost::shared_ptr<AnalyzerViewInterface>& view);

private:
    void add(const boost::shared_ptr<SettingInterface>& setting);
    void addChoice(const boost::shared_ptr<SettingInterface>& setting);
    void addSwitch(const boost::shared_ptr<SettingInterface>& setting);

    /// \p show brings \p field up to date.
    void addRow(
        const boost::shared_ptr<SettingInterface>& setting,
        QWidget* field,
        const boost::function<void()>& show);
    void apply(const boost::function<void()>& change);

    QLabel* m_title;
    QLabel* m_problem;
    VerticalScrollArea* m_scroll;
    QWidget* m_fields = nullptr;
    QFormLayout* m_form = nullptr;
    SignalConnectionCollection m_connections;
};

} // namespace analyzer
