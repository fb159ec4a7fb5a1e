#pragma once

#include <dataviews/common/images/ImagesExport.h>
#include <dataviews/common/views/PropertyAbstract.h>

#include <dataviews/platform/data/WeakPtr.h>
#include <dataviews/platform/selection/SuspendableInterface.h>

#include <boost/shared_ptr.hpp>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class TagGroup;
class Variable;

/// The settings that every view of images has.
///
/// Shared by the view, its editors and its serializers; nobody holds copies of the values. All but allTagsToShow() are
/// undoable. Every accessor gives the same property at every call.
class DATAVIEWS_IMAGES_EXPORT ImageViewProperties : public SuspendableInterface
{
public:
    ImageViewProperties();
    ImageViewProperties(const ImageViewProperties&) = delete;
    ImageViewProperties& operator=(const ImageViewProperties&) = delete;
    ~ImageViewProperties() override;

    /// Stops the clean-up after removed tags and the upkeep of allTagsToShow(); resume() makes up for nothing.
    void suspend() override;
    void resume() override;

    /// Whether texts are drawn under the images; off at first.
    [[nodiscard]] boost::shared_ptr<corvane::PropertyAbstract<bool>> showLabels() const;

    /// The variables whose values make up the texts.
    [[nodiscard]] boost::shared_ptr<corvane::PropertyAbstract<std::vector<WeakPtr<Variable>>>>
    variablesInLabel() const;

    [[nodiscard]] boost::shared_ptr<corvane::PropertyAbstract<std::vector<WeakPtr<TagGroup>>>>
    tagGroupsToShow() const;
    [[nodiscard]] boost::shared_ptr<corvane::PropertyAbstract<std::vector<std::string>>>
    tagsToShow() const;

    /// 0 to 100 and beyond, see zoomLevelToImageSize(); 25 at first. Changes that follow one another are one undo
    /// step.
    [[nodiscard]] boost::shared_ptr<corvane::PropertyAbstract<std::uint64_t>> zoom() const;

    /// The tags of tagGroupsToShow() in the order of the groups, then tagsToShow(), each once. Only to be read.
    [[nodiscard]] boost::shared_ptr<corvane::PropertyAbstract<std::vector<std::string>>>
    allTagsToShow() const;

private:
    struct Implementation;

    std::unique_ptr<Implementation> m_implementation;
};
