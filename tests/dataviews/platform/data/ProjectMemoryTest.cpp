#include "columns.h"

#include <dataviews/platform/data/Project.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

namespace {

std::size_t allocatedBytes = 0;

} // namespace

// Counts what the library takes from the heap. The arrays of VTK allocate by other means and are not counted.
void* operator new(std::size_t size)
{
    allocatedBytes += size;
    void* memory = std::malloc(size == 0 ? 1 : size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept
{
    std::free(memory);
}

namespace {

TEST(ProjectMemoryTest, AMillionCasesCostTheirColumnsAndABitmapATag)
{
    constexpr std::size_t cases = 1000000;
    const auto column = vtkSmartPointer<vtkDoubleArray>::New();
    column->SetName("x");
    column->SetNumberOfValues(cases);
    column->FillValue(0.5);
    const auto texts = vtkSmartPointer<vtkStringArray>::New();
    texts->SetName("text");
    texts->SetNumberOfValues(cases);
    Project project;
    const RowBitmap all(cases, true);
    constexpr std::size_t bitmapBytes = cases / 8;

    std::size_t before = allocatedBytes;
    project.setCaseCount(cases);
    project.addVariable(column, Variable::Output);
    project.addVariable(texts, Variable::Identifier);
    for (const WeakPtr<Variable>& variable : project.variables()) {
        static_cast<void>(variable.lock()->distinctValueCount());
        static_cast<void>(variable.lock()->firstValue());
    }
    EXPECT_LT(allocatedBytes - before, 100000U);

    before = allocatedBytes;
    project.addTagGroup("Marks");
    project.addTag("Marks", "good");
    project.tagCases("good", all, true);
    EXPECT_LT(allocatedBytes - before, bitmapBytes + 10000U);

    before = allocatedBytes;
    std::size_t found = 0;
    for (unsigned long long id = 0; id <= cases + 1; ++id) {
        found += project.record(id) ? 1 : 0;
    }
    EXPECT_EQ(found, cases);
    EXPECT_EQ(allocatedBytes, before) << "Finding a record allocates.";
}

} // namespace
