#pragma once

#include <dataviews/platform/serialize/Serializer.h>

#include <string>

namespace analyzer {

class CaseTableModel;
class CaseTableWidget;

/// Keeps what a table of cases is sorted by, and the widths of its columns, by their names.
///
/// Columns that are not there any more are left out.
class CaseTableState : public Serializer
{
public:
    /// \p widget shows \p model; both are there whenever something is written or read.
    CaseTableState(const std::string& elementName, CaseTableModel& model, CaseTableWidget& widget);
    CaseTableState(const CaseTableState&) = delete;
    CaseTableState& operator=(const CaseTableState&) = delete;
    ~CaseTableState() override;

protected:
    void serializeSelf(QDomElement& element) const override;

    /// \throws ExceptionBase for an order that does not exist and for widths that are no widths.
    void deserializeSelf(const QDomElement& element) override;

private:
    [[nodiscard]] int columnNamed(const QString& name) const;

    CaseTableModel& m_model;
    CaseTableWidget& m_widget;
};

} // namespace analyzer
