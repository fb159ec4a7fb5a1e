#pragma once

#include <dataviews/common/views/DataViewInterface.h>

#include <boost/shared_ptr.hpp>

#include <memory>
#include <string>

class SelectionModelInterface;

/// What most views have in common: a serializer, the shared selection of cases, a mouse mode, and the rule of what a
/// plain click selects.
class DATAVIEWS_VIEWS_EXPORT DataViewAbstract : public virtual DataViewInterface
{
public:
    /// Takes \p serializer over and shares \p selectionModel with the other views. The mouse mode starts at Select
    /// and may take any value.
    DataViewAbstract(
        std::unique_ptr<SerializerInterface> serializer,
        boost::shared_ptr<SelectionModelInterface> selectionModel);

    /// Takes the serializer of \p other, which is left without one, and shares its selection model and its
    /// mouse-mode property.
    DataViewAbstract(DataViewAbstract& other);

    /// As the copy constructor.
    // NOLINTNEXTLINE(misc-unconventional-assign-operator): it takes from the other view
    DataViewAbstract& operator=(DataViewAbstract& other);

    ~DataViewAbstract() override;

    /// Not to be called once another view has taken the serializer.
    [[nodiscard]] SerializerInterface& serializer() override;

    /// The click rule: nothing under the mouse clears the selection, a case that is selected keeps the selection as
    /// it is, any other case replaces the selection. Keyboard modifiers play no part.
    void adjustSelectionForMouseClickAtPoint() override;

    /// The name of the serializer.
    [[nodiscard]] std::string domName() const override;

protected:
    [[nodiscard]] boost::shared_ptr<corvane::PropertyAbstract<MouseMode>> mouseMode()
        const override;

    /// Writes the ID of the case under the mouse to \p caseID and returns true; false, with \p caseID untouched, if
    /// there is none. By default there is none.
    virtual bool caseIDAtPoint(unsigned long long& caseID);

    /// The selection that all views share.
    [[nodiscard]] SelectionModelInterface& selectionModel() const { return *m_selectionModel; }

private:
    // Destroyed from the last to the first: mouse mode, selection model, serializer.
    std::unique_ptr<SerializerInterface> m_serializer;
    boost::shared_ptr<SelectionModelInterface> m_selectionModel;
    boost::shared_ptr<corvane::PropertyAbstract<MouseMode>> m_mouseMode;
};
