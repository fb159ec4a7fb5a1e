#pragma once

#include <dataviews/platform/signals/SignalConnectionCollection.h>

#include <QString>
#include <QWidget>

#include <boost/function.hpp>
#include <boost/shared_ptr.hpp>

#include <set>
#include <vector>

class QGridLayout;
class QLabel;

namespace analyzer {

class AnalyzerViewInterface;
class SectionHeading;
class SettingInterface;
class SettingRow;
class VerticalScrollArea;

/// Edits the settings of the view that is active.
///
/// Each setting is a row, grey while it has no effect; the field has the setting's name as object name. A value that is
/// refused changes nothing, and is said below its field (see SettingRow). Rows of a section stand under a
/// SectionHeading, which hides them; sections that are hidden stay so for every view.
class SettingsPanel : public QWidget
{
    Q_OBJECT

public:
    explicit SettingsPanel(QWidget* parent = nullptr);
    SettingsPanel(const SettingsPanel&) = delete;
    SettingsPanel& operator=(const SettingsPanel&) = delete;
    ~SettingsPanel() override;

    /// Shows the settings of \p view, or that there are none for an empty pointer. The panel does not keep the view.
    /// What is being typed is dropped: its view may be gone.
    void setView(const boost::shared_ptr<AnalyzerViewInterface>& view);

private:
    /// Rows that follow one another under one heading.
    struct Section
    {
        QString name;
        SectionHeading* heading = nullptr; ///< none for the name that is empty
        std::vector<SettingRow*> rows;
    };

    void startSection(const QString& name);
    void setExpanded(const QString& section, bool expanded);
    void showSections();

    void add(const boost::shared_ptr<SettingInterface>& setting);
    void addChoice(const boost::shared_ptr<SettingInterface>& setting, SettingRow& row);
    void addSwitch(const boost::shared_ptr<SettingInterface>& setting, SettingRow& row);

    /// For the fields that have a setting of type \p Interface and follow it themselves.
    template <class Field, class Interface>
    void addField(const boost::shared_ptr<SettingInterface>& setting, SettingRow& row);

    /// \p show brings \p field up to date.
    void fillRow(
        const boost::shared_ptr<SettingInterface>& setting,
        SettingRow& row,
        QWidget* field,
        const boost::function<void()>& show);

    QLabel* m_title;
    VerticalScrollArea* m_scroll;
    QWidget* m_fields = nullptr;
    QGridLayout* m_form = nullptr;
    int m_nextLine = 0;
    std::vector<Section> m_sections;
    std::set<QString> m_collapsed;
    SignalConnectionCollection m_connections;
};

} // namespace analyzer
