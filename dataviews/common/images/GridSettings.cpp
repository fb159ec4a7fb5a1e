#include <dataviews/common/images/GridSettings.h>

GridSettings GridSettings::of(const ImageMatrixViewProperties& properties)
{
    GridSettings settings;
    settings.rowsBy = properties.dimensionRowsBy()->value();
    settings.columnsBy = properties.dimensionColumnsBy()->value();
    settings.pagesBy = properties.dimensionPagesBy()->value();
    settings.rowVariable = properties.rowVar()->value();
    settings.columnVariable = properties.columnVar()->value();
    settings.pageVariable = properties.pageVar()->value();
    settings.pageValue = properties.pageValue()->value();
    settings.tags = properties.allTagsToShow()->value();
    return settings;
}

bool GridSettings::useTags() const
{
    return rowsBy == By::ByTag || columnsBy == By::ByTag || pagesBy == PageBy::ByTag;
}
