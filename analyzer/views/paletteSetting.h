#pragma once

#include <analyzer/views/ChoiceSetting.h>

#include <dataviews/common/charts/ColorPalette.h>
#include <dataviews/common/views/PropertyAbstract.h>

#include <dataviews/platform/data/Variable.h>
#include <dataviews/platform/data/WeakPtr.h>

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>

namespace analyzer {

/// The choice of \p palette, enabled while \p variable is one of numbers: texts have colors of their own.
[[nodiscard]] inline boost::shared_ptr<ChoiceSetting<ColorPalette>> makePaletteSetting(
    const boost::shared_ptr<corvane::PropertyAbstract<ColorPalette>>& palette,
    const boost::shared_ptr<corvane::PropertyAbstract<WeakPtr<Variable>>>& variable)
{
    auto setting = boost::make_shared<ChoiceSetting<ColorPalette>>(
        SettingInterface::Kind::Choice,
        "palette",
        "Palette",
        palette,
        ChoiceSetting<ColorPalette>::NamedValues{
            {"viridis", ColorPalette::Viridis},
            {"cividis", ColorPalette::Cividis},
            {"coolwarm", ColorPalette::CoolWarm}});
    setting->enableWhile(variable, [](const WeakPtr<Variable>& handle) {
        const boost::shared_ptr<Variable> locked = handle.lock();
        return locked && locked->isNumeric();
    });
    return setting;
}

} // namespace analyzer
