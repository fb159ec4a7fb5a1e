#include <cstdlib>
#include <exception>
#include <iostream>
#include <string>

#include <samples/SampleStudy.h>

namespace {

constexpr int wrongUse = 2;

}

/// Computes the sample study and writes it to the folder named on the command line.
int main(int argc, char* argv[])
{
    const std::string argument = argc == 2 ? argv[1] : "";
    if (argument.empty() || argument.front() == '-') {
        std::cerr << "usage: dataviews-make-sample OUTPUT_DIRECTORY\n";
        return wrongUse;
    }
    try {
        const samples::SampleStudy study(samples::SampleStudy::bundledSweep());
        study.write(argument);
        std::cout << "Wrote " << study.numberOfCases() << " cases to " << argument << '\n';
    } catch (const std::exception& error) {
        std::cerr << "dataviews-make-sample: " << error.what() << '\n';
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
