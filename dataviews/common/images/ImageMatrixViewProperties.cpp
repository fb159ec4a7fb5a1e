#include <dataviews/common/images/ImageMatrixViewProperties.h>
#include <dataviews/common/images/undoableProperty.h>

#include <dataviews/platform/data/AxisVariableProvider.h>
#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/data/Variable.h>
#include <dataviews/platform/undo/UndoStack.h>

namespace {

using corvane::PropertyAbstract;
using PageDimensionBy = ImageMatrixViewProperties::PageDimensionBy;
using RowColumnDimensionBy = ImageMatrixViewProperties::RowColumnDimensionBy;

/// The smallest value of \p handle, empty for a handle without a variable.
Variant firstValue(const WeakPtr<Variable>& handle)
{
    const boost::shared_ptr<Variable> variable = handle.lock();
    return variable ? variable->firstValue() : Variant();
}

Variant firstTag(const std::vector<std::string>& tags)
{
    return tags.empty() ? Variant() : Variant(tags.front());
}

boost::shared_ptr<PropertyAbstract<Variant>> pageValueProperty(const WeakPtr<Variable>& pageVar)
{
    const int undoId = UndoStack::nextUndoID();
    return undoableProperty("Page Variable Value", firstValue(pageVar), undoId);
}

/// Variables for a new matrix, in the order of the choosing.
struct Picks
{
    AxisVariableProvider provider{Project::project().variables()};
    WeakPtr<Variable> column = provider.nextVariable(Variable::Input);
    WeakPtr<Variable> row = provider.nextVariable(Variable::Input);
    WeakPtr<Variable> page = provider.nextVariable(Variable::Input);
};

} // namespace

struct ImageMatrixViewProperties::Implementation
{
    explicit Implementation(const Picks& picks)
        : rowVar(undoableProperty("Row Variable", picks.row))
        , dimensionRowsBy(undoableProperty("Dimension Rows By", RowColumnDimensionBy::ByVariable))
        , columnVar(undoableProperty("Column Variable", picks.column))
        , dimensionColumnsBy(
              undoableProperty("Dimension Columns By", RowColumnDimensionBy::ByVariable))
        , pageVar(undoableProperty("Page Variable", picks.page))
        , pageValue(pageValueProperty(picks.page))
        , dimensionPagesBy(undoableProperty("Dimension Pages By", PageDimensionBy::None))
    {}

    boost::shared_ptr<PropertyAbstract<WeakPtr<Variable>>> rowVar;
    boost::shared_ptr<PropertyAbstract<RowColumnDimensionBy>> dimensionRowsBy;
    boost::shared_ptr<PropertyAbstract<WeakPtr<Variable>>> columnVar;
    boost::shared_ptr<PropertyAbstract<RowColumnDimensionBy>> dimensionColumnsBy;
    boost::shared_ptr<PropertyAbstract<WeakPtr<Variable>>> pageVar;
    boost::shared_ptr<PropertyAbstract<Variant>> pageValue;
    boost::shared_ptr<PropertyAbstract<PageDimensionBy>> dimensionPagesBy;
};

ImageMatrixViewProperties::ImageMatrixViewProperties()
    : m_implementation(std::make_unique<Implementation>(Picks()))
{}

ImageMatrixViewProperties::~ImageMatrixViewProperties() = default;

boost::shared_ptr<PropertyAbstract<WeakPtr<Variable>>> ImageMatrixViewProperties::rowVar() const
{
    return m_implementation->rowVar;
}

boost::shared_ptr<PropertyAbstract<RowColumnDimensionBy>> ImageMatrixViewProperties::
    dimensionRowsBy() const
{
    return m_implementation->dimensionRowsBy;
}

boost::shared_ptr<PropertyAbstract<WeakPtr<Variable>>> ImageMatrixViewProperties::columnVar() const
{
    return m_implementation->columnVar;
}

boost::shared_ptr<PropertyAbstract<RowColumnDimensionBy>> ImageMatrixViewProperties::
    dimensionColumnsBy() const
{
    return m_implementation->dimensionColumnsBy;
}

boost::shared_ptr<PropertyAbstract<WeakPtr<Variable>>> ImageMatrixViewProperties::pageVar() const
{
    return m_implementation->pageVar;
}

boost::shared_ptr<PropertyAbstract<Variant>> ImageMatrixViewProperties::pageValue() const
{
    return m_implementation->pageValue;
}

boost::shared_ptr<PropertyAbstract<PageDimensionBy>> ImageMatrixViewProperties::dimensionPagesBy()
    const
{
    return m_implementation->dimensionPagesBy;
}

void ImageMatrixViewProperties::choosePages(PageDimensionBy by)
{
    const UndoStack::Macro macro(QStringLiteral("Change Dimension Pages By"));
    dimensionPagesBy()->setValue(by);
    switch (by) {
    case PageDimensionBy::None:
        break;
    case PageDimensionBy::ByTag:
        pageValue()->setValue(firstTag(allTagsToShow()->value()));
        break;
    case PageDimensionBy::ByVariable:
        pageValue()->setValue(firstValue(pageVar()->value()));
        break;
    }
}

void ImageMatrixViewProperties::choosePageVariable(const WeakPtr<Variable>& variable)
{
    const UndoStack::Macro macro(QStringLiteral("Change Page Variable"));
    pageVar()->setValue(variable);
    if (dimensionPagesBy()->value() == PageDimensionBy::ByVariable) {
        pageValue()->setValue(firstValue(variable));
    }
}
