#include <analyzer/study/StudyError.h>
#include <analyzer/study/StudyReader.h>

#include <dataviews/platform/data/Project.h>

#include <vtkAbstractArray.h>

#include <cstddef>
#include <cstdint>
#include <set>
#include <string>

#include <fuzz/ScratchFile.h>
#include <fuzz/require.h>

/// The first byte says how the table is cut for reading, the others are the table.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static ScratchFile file("data.csv");
    if (size == 0) {
        return 0;
    }
    constexpr std::size_t step = 7;
    const std::size_t bytes = 1 + data[0] * step;
    const bool inBlocks = data[0] % 2 == 1;
    const analyzer::StudyReader reader({bytes, bytes, inBlocks ? 2U : 0U, bytes});
    file.write(data + 1, size - 1);
    try {
        analyzer::ReadProgress progress;
        const analyzer::ReadStudy study = reader.read(file.path(), progress);

        const Project& project = *study.project;
        require(project.caseCount() > 0, "a study has a case");
        std::set<std::string> names;
        for (const WeakPtr<Variable>& handle : project.variables()) {
            const boost::shared_ptr<Variable> variable = handle.lock();
            require(
                variable->column().GetNumberOfValues()
                    == static_cast<vtkIdType>(project.caseCount()),
                "a variable has a value for each case");
            require(!variable->name().empty(), "a variable has a name");
            require(names.insert(variable->name()).second, "names are unique");
            require(
                variable->missingCount() <= project.caseCount(), "no more is missing than can be");
        }
    } catch (const analyzer::StudyError& error) {
        require(*error.what() != '\0', "a refusal has a reason");
    }
    return 0;
}
