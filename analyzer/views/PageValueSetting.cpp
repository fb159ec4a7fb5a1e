#include <analyzer/views/PageValueSetting.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/data/Variable.h>
#include <dataviews/platform/data/variantDisplayText.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace analyzer {

namespace {

/// Whether two of \p values, which ascend, read the same. Reading the same, they are neighbours.
bool readAlike(const std::vector<Variant>& values)
{
    std::string before;
    for (const Variant& value : values) {
        if (value.type() != Variant::Type::Real) {
            return false; // whole numbers and texts are shown in full
        }
        std::string text = variantDisplayText(value);
        if (text == before) {
            return true;
        }
        before = std::move(text);
    }
    return false;
}

std::optional<double> readNumber(const std::string& text)
{
    try {
        return Variant(text).toReal();
    } catch (const ExceptionBase&) {
        return std::nullopt;
    }
}

} // namespace

PageValueSetting::PageValueSetting(
    std::string name, std::string label, const ImageMatrixViewProperties& properties)
    : SettingAbstract<StepsSettingInterface>(std::move(name), std::move(label))
    , m_value(properties.pageValue())
    , m_variable(properties.pageVar())
    , m_by(properties.dimensionPagesBy())
    , m_tags(properties.allTagsToShow())
{
    m_connections.add(m_value->valueChanged.connect([this](const Variant&) { emitChanged(); }));
    m_connections.add(
        m_variable->valueChanged.connect([this](const WeakPtr<Variable>&) { forgetPages(); }));
    m_connections.add(m_by->valueChanged.connect([this](PageDimensionBy) { forgetPages(); }));
    m_connections.add(
        m_tags->valueChanged.connect([this](const std::vector<std::string>&) { forgetPages(); }));
    m_connections.add(
        Project::project().signalProjectChanged.connect([this](const ProjectChange& change) {
            if (change.studyReplaced) {
                forgetPages();
            }
        }));
}

bool PageValueSetting::isEnabled() const
{
    return m_by->value() != PageDimensionBy::None
        && SettingAbstract<StepsSettingInterface>::isEnabled();
}

std::vector<std::string> PageValueSetting::choices() const
{
    std::vector<std::string> texts;
    const std::size_t end = count();
    texts.reserve(end);
    for (std::size_t place = 0; place < end; ++place) {
        texts.push_back(textAt(place));
    }
    return texts;
}

std::size_t PageValueSetting::count() const
{
    return pages().values.size() + (pages().missing ? 1 : 0);
}

std::optional<std::size_t> PageValueSetting::place() const
{
    const std::vector<Variant>& values = pages().values;
    const Variant value = m_value->value();
    if (value.isEmpty()) {
        return pages().missing ? std::optional(values.size()) : std::nullopt;
    }
    const auto found = m_by->value() == PageDimensionBy::ByVariable
        ? std::lower_bound(values.begin(), values.end(), value)
        : std::find(values.begin(), values.end(), value);
    if (found == values.end() || *found != value) {
        return std::nullopt;
    }
    return static_cast<std::size_t>(found - values.begin());
}

std::string PageValueSetting::textAt(std::size_t place) const
{
    const Pages& all = pages();
    if (place == all.values.size()) {
        return all.missingText;
    }
    const Variant& value = all.values[place];
    return all.inFull ? value.toString() : variantDisplayText(value);
}

void PageValueSetting::setPlace(std::size_t place)
{
    const std::vector<Variant>& values = pages().values;
    // A copy: telling the listeners may throw the pages away.
    const Variant value = place == values.size() ? Variant() : values[place];
    m_value->setValue(value);
}

std::string PageValueSetting::text() const
{
    const std::optional<std::size_t> present = place();
    return present ? textAt(*present) : std::string();
}

void PageValueSetting::setText(const std::string& text)
{
    const Pages& all = pages();
    if (all.missing && text == all.missingText) {
        setPlace(all.values.size());
        return;
    }
    if (!all.values.empty() && all.values.front().isNumber()) {
        setPlace(placeOfNumber(text));
        return;
    }
    const auto found = std::find(all.values.begin(), all.values.end(), Variant(text));
    if (found == all.values.end()) {
        refuse(text);
    }
    setPlace(static_cast<std::size_t>(found - all.values.begin()));
}

const PageValueSetting::Pages& PageValueSetting::pages() const
{
    if (!m_pages) {
        m_pages = findPages();
    }
    return *m_pages;
}

PageValueSetting::Pages PageValueSetting::findPages() const
{
    Pages found;
    switch (m_by->value()) {
    case PageDimensionBy::None:
        break;
    case PageDimensionBy::ByTag:
        for (const std::string& tag : m_tags->value()) {
            found.values.emplace_back(tag);
        }
        break;
    case PageDimensionBy::ByVariable:
        if (const boost::shared_ptr<Variable> variable = m_variable->value().lock()) {
            found.values = variable->distinctValues();
            found.missing = variable->missingCount() > 0;
            found.inFull = readAlike(found.values);
            found.missingText = variantDisplayText(Variant());
            while (std::binary_search(
                found.values.begin(), found.values.end(), Variant(found.missingText))) {
                found.missingText = "(" + found.missingText + ")";
            }
        }
        break;
    }
    return found;
}

void PageValueSetting::forgetPages()
{
    m_pages.reset();
    emitChanged();
}

std::size_t PageValueSetting::placeOfNumber(const std::string& text) const
{
    const std::optional<double> number = readNumber(text);
    if (!number) {
        refuse(text);
    }
    const std::vector<Variant>& values = pages().values;
    const auto exact = std::lower_bound(values.begin(), values.end(), Variant(*number));
    if (exact != values.end() && *exact == Variant(*number)) {
        return static_cast<std::size_t>(exact - values.begin());
    }
    // What people read is at most half a unit of the sixth digit away.
    constexpr double roundedBy = 1e-5;
    const double margin = std::abs(*number) * roundedBy;
    const auto begin = std::lower_bound(values.begin(), values.end(), Variant(*number - margin));
    const auto end = std::upper_bound(begin, values.end(), Variant(*number + margin));
    const auto readsSo = [&text](const Variant& value) {
        return variantDisplayText(value) == text;
    };
    const auto found = std::find_if(begin, end, readsSo);
    if (found == end) {
        refuse(text);
    }
    if (std::find_if(found + 1, end, readsSo) != end) {
        throw ExceptionBase(
            "\"" + text + "\" stands for several values of " + name()
            + "; write one in full, such as " + found->toString() + ".");
    }
    return static_cast<std::size_t>(found - values.begin());
}

void PageValueSetting::refuse(const std::string& text) const
{
    switch (m_by->value()) {
    case PageDimensionBy::None:
        throw ExceptionBase(
            "\"" + text + "\" cannot be set for " + name()
            + ": there are no pages, for neither a tag nor a variable makes them.");
    case PageDimensionBy::ByTag:
        throw ExceptionBase("\"" + text + "\" is not among the tags that are shown.");
    case PageDimensionBy::ByVariable:
        break;
    }
    const boost::shared_ptr<Variable> variable = m_variable->value().lock();
    if (!variable) {
        throw ExceptionBase(
            "\"" + text + "\" cannot be set for " + name() + ": no variable makes the pages.");
    }
    throw ExceptionBase("\"" + text + "\" is not a value of " + variable->name() + ".");
}

} // namespace analyzer
