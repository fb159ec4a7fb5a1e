#include <dataviews/common/images/LabelMaker.h>

#include <dataviews/platform/data/Record.h>
#include <dataviews/platform/data/Variable.h>
#include <dataviews/platform/data/variantDisplayText.h>

#include <sstream>

LabelMaker::LabelMaker() = default;

LabelMaker::LabelMaker(const LabelMaker&) = default;

LabelMaker& LabelMaker::operator=(const LabelMaker&) = default;

std::string LabelMaker::label(
    const std::vector<WeakPtr<Variable>>& variables,
    const Record& record,
    const char* separator) const
{
    std::ostringstream text;
    bool isFirst = true;
    for (const WeakPtr<Variable>& handle : variables) {
        const boost::shared_ptr<Variable> variable = handle.lock();
        if (!variable) {
            continue;
        }
        if (!isFirst) {
            text << separator;
        }
        isFirst = false;
        text << variable->name() << '=' << variantDisplayText(record.value(*variable));
    }
    return text.str();
}

LabelMaker::~LabelMaker() = default;
