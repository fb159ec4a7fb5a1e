#include <analyzer/runAnalyzer.h>

int main(int argc, char** argv)
{
    return analyzer::runAnalyzer(argc, argv);
}
