#pragma once

#include <dataviews/platform/data/AuxFile.h>
#include <dataviews/platform/data/WeakPtr.h>
#include <dataviews/platform/serialize/Serializer.h>

#include <boost/function.hpp>

#include <string>

namespace analyzer {

/// Keeps an image of the open study: the ID of its case as the element's text, and its path from the folder of the study
/// as an attribute.
class SelectedImageSerializer : public Serializer
{
public:
    /// \p set is called only with an image that the study has; one that is gone, or none, is passed over.
    SelectedImageSerializer(
        std::string name,
        boost::function<WeakPtr<AuxFile>()> get,
        boost::function<void(const WeakPtr<AuxFile>&)> set);

protected:
    void serializeSelf(QDomElement& element) const override;

    /// \throws boost::bad_lexical_cast if there is a path and the text is no case ID, and what setting throws.
    void deserializeSelf(const QDomElement& element) override;

private:
    boost::function<WeakPtr<AuxFile>()> m_get;
    boost::function<void(const WeakPtr<AuxFile>&)> m_set;
};

} // namespace analyzer
