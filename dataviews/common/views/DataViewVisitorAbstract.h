#pragma once

#include <dataviews/common/views/DataViewVisitorInterface.h>

#include <cstdint>

/// A visitor for those who care about some kinds of views only: every visit that is not overridden ends in
/// visitAnyViewType().
class DATAVIEWS_VIEWS_EXPORT DataViewVisitorAbstract : public DataViewVisitorInterface
{
public:
    /// A mark for derived visitors, which decide what it means; nothing here looks at it.
    enum AssertStatus : std::int32_t
    {
        AssertOnAnyViewType = 0, ///< a visit that is not overridden is a mistake
        AcceptAnyViewType = 1 ///< it is not
    };

    explicit DataViewVisitorAbstract(AssertStatus status = AcceptAnyViewType);
    DataViewVisitorAbstract(const DataViewVisitorAbstract& other);
    DataViewVisitorAbstract& operator=(const DataViewVisitorAbstract&) = default;

    void visit(boost::shared_ptr<ImageDiffViewInterface> view) override;
    void visit(boost::shared_ptr<ImageMatrixViewInterface> view) override;
    void visit(boost::shared_ptr<LinePlotInterface> view) override;
    void visit(boost::shared_ptr<ScatterPlot2DInterface> view) override;
    void visit(boost::shared_ptr<ScatterPlot3DInterface> view) override;
    void visit(boost::shared_ptr<SelectedCasesViewInterface> view) override;
    void visit(boost::shared_ptr<SelectedImageViewInterface> view) override;
    void visit(boost::shared_ptr<TableViewInterface> view) override;

    /// Pure, so that only derived visitors exist.
    ~DataViewVisitorAbstract() override = 0;

protected:
    /// Called for each view whose kind the visitor does not override; does nothing by default.
    virtual void visitAnyViewType();

    [[nodiscard]] AssertStatus assertStatus() const { return m_assertStatus; }

private:
    AssertStatus m_assertStatus;
};
