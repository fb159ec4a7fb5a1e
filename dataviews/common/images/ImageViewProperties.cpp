#include <dataviews/common/images/ImageViewProperties.h>
#include <dataviews/common/images/undoableProperty.h>
#include <dataviews/common/views/Property.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/data/TagGroup.h>
#include <dataviews/platform/signals/SignalConnectionCollection.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <boost/make_shared.hpp>

#include <algorithm>
#include <set>

namespace {

using corvane::Property;
using corvane::PropertyAbstract;

constexpr std::uint64_t initialZoom = 25;

/// Takes all that is in \p removed out of a list, as one change.
template <class T>
void erase(PropertyAbstract<std::vector<T>>& property, const std::vector<T>& removed)
{
    std::vector<T> remaining = property.value();
    const auto end = std::remove_if(remaining.begin(), remaining.end(), [&removed](const T& item) {
        return std::find(removed.begin(), removed.end(), item) != removed.end();
    });
    if (end != remaining.end()) {
        remaining.erase(end, remaining.end());
        property.setValue(remaining);
    }
}

} // namespace

struct ImageViewProperties::Implementation
{
    boost::shared_ptr<PropertyAbstract<bool>> showLabels = undoableProperty("Show Labels", false);
    boost::shared_ptr<PropertyAbstract<std::vector<WeakPtr<Variable>>>> variablesInLabel =
        undoableProperty("Variables In Label", std::vector<WeakPtr<Variable>>());
    boost::shared_ptr<PropertyAbstract<std::vector<WeakPtr<TagGroup>>>> tagGroupsToShow =
        undoableProperty("Tag Groups to Show", std::vector<WeakPtr<TagGroup>>());
    boost::shared_ptr<PropertyAbstract<std::vector<std::string>>> tagsToShow =
        undoableProperty("Tags to Show", std::vector<std::string>());
    boost::shared_ptr<PropertyAbstract<std::uint64_t>> zoom =
        undoableProperty("Zoom", initialZoom, UndoStack::nextUndoID());
    boost::shared_ptr<PropertyAbstract<std::vector<std::string>>> allTagsToShow =
        boost::make_shared<Property<std::vector<std::string>>>(std::vector<std::string>());
    SignalConnectionCollection connections;

    void followProject(const ProjectChange& change) const
    {
        erase(*tagsToShow, change.removedTags);
        erase(*tagGroupsToShow, change.removedTagGroups);
        // A group that is shown may have gained or lost a tag.
        updateAllTagsToShow();
    }

    void updateAllTagsToShow() const
    {
        std::vector<std::string> all;
        std::set<std::string> known;
        const auto append = [&](const std::vector<std::string>& tags) {
            for (const std::string& tag : tags) {
                if (known.insert(tag).second) {
                    all.push_back(tag);
                }
            }
        };
        for (const WeakPtr<TagGroup>& handle : tagGroupsToShow->value()) {
            if (const boost::shared_ptr<TagGroup> group = handle.lock()) {
                append(group->tags());
            }
        }
        append(tagsToShow->value());
        allTagsToShow->setValue(all);
    }
};

ImageViewProperties::ImageViewProperties()
    : m_implementation(std::make_unique<Implementation>())
{
    Implementation& i = *m_implementation;
    i.connections.add(Project::project().signalProjectChanged.connect(
        [&i](const ProjectChange& change) { i.followProject(change); }));
    i.connections.add(i.tagGroupsToShow->valueChanged.connect(
        [&i](const std::vector<WeakPtr<TagGroup>>&) { i.updateAllTagsToShow(); }));
    i.connections.add(i.tagsToShow->valueChanged.connect(
        [&i](const std::vector<std::string>&) { i.updateAllTagsToShow(); }));
}

ImageViewProperties::~ImageViewProperties() = default;

void ImageViewProperties::suspend()
{
    m_implementation->connections.block();
}

void ImageViewProperties::resume()
{
    m_implementation->connections.unblock();
}

boost::shared_ptr<PropertyAbstract<bool>> ImageViewProperties::showLabels() const
{
    return m_implementation->showLabels;
}

boost::shared_ptr<PropertyAbstract<std::vector<WeakPtr<Variable>>>> ImageViewProperties::
    variablesInLabel() const
{
    return m_implementation->variablesInLabel;
}

boost::shared_ptr<PropertyAbstract<std::vector<WeakPtr<TagGroup>>>> ImageViewProperties::
    tagGroupsToShow() const
{
    return m_implementation->tagGroupsToShow;
}

boost::shared_ptr<PropertyAbstract<std::vector<std::string>>> ImageViewProperties::tagsToShow()
    const
{
    return m_implementation->tagsToShow;
}

boost::shared_ptr<PropertyAbstract<std::uint64_t>> ImageViewProperties::zoom() const
{
    return m_implementation->zoom;
}

boost::shared_ptr<PropertyAbstract<std::vector<std::string>>> ImageViewProperties::allTagsToShow()
    const
{
    return m_implementation->allTagsToShow;
}
