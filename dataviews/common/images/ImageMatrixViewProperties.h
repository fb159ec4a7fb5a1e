#pragma once

#include <dataviews/common/images/ImageViewProperties.h>

#include <dataviews/platform/data/Variant.h>

/// The settings of an image matrix: what its rows, columns and pages stand for.
class DATAVIEWS_IMAGES_EXPORT ImageMatrixViewProperties : public ImageViewProperties
{
public:
    /// What a row or a column stands for.
    enum class RowColumnDimensionBy : std::int32_t
    {
        ByTag = 0, ///< a tag of allTagsToShow()
        ByVariable = 1 ///< a value of the dimension's variable
    };

    /// What a page stands for.
    enum class PageDimensionBy : std::int32_t
    {
        None = 0, ///< there is one page with everything
        ByTag = 1, ///< the tag pageValue(), one of allTagsToShow()
        ByVariable = 2 ///< the value pageValue() of the variable pageVar()
    };

    /// Proposes variables for columns, rows and pages, in this order: inputs with few values first.
    ImageMatrixViewProperties();
    ImageMatrixViewProperties(const ImageMatrixViewProperties&) = delete;
    ImageMatrixViewProperties& operator=(const ImageMatrixViewProperties&) = delete;
    ~ImageMatrixViewProperties() override;

    [[nodiscard]] boost::shared_ptr<corvane::PropertyAbstract<WeakPtr<Variable>>> rowVar() const;
    [[nodiscard]] boost::shared_ptr<corvane::PropertyAbstract<RowColumnDimensionBy>>
    dimensionRowsBy() const;
    [[nodiscard]] boost::shared_ptr<corvane::PropertyAbstract<WeakPtr<Variable>>> columnVar() const;
    [[nodiscard]] boost::shared_ptr<corvane::PropertyAbstract<RowColumnDimensionBy>>
    dimensionColumnsBy() const;
    [[nodiscard]] boost::shared_ptr<corvane::PropertyAbstract<WeakPtr<Variable>>> pageVar() const;

    /// Changes that follow one another are one undo step.
    [[nodiscard]] boost::shared_ptr<corvane::PropertyAbstract<Variant>> pageValue() const;
    [[nodiscard]] boost::shared_ptr<corvane::PropertyAbstract<PageDimensionBy>> dimensionPagesBy()
        const;

    /// For editors: pages by \p by from now on, at the first page, in one undo step.
    void choosePages(PageDimensionBy by);

    /// For editors: \p variable for the pages from now on, at its smallest value where pages are by variable, in one
    /// undo step.
    void choosePageVariable(const WeakPtr<Variable>& variable);

private:
    struct Implementation;

    std::unique_ptr<Implementation> m_implementation;
};
