#include "support/TestClasses.h"
#include <cstdio>
#include <map>
#include <string_view>

/// A function's own variable, for the order in which files are initialised is open.
static std::map<std::string_view, TestClasses::Run> &classes()
{
    static std::map<std::string_view, TestClasses::Run> all;
    return all;
}

bool TestClasses::add(const char *name, Run run)
{
    return classes().emplace(name, run).second;
}

int main(int argc, char **argv)
{
    QCoreApplication::setAttribute(Qt::AA_Use96Dpi); // pixels are the same on every screen
    const auto found = classes().find(argc > 1 ? argv[1] : "");
    if (found != classes().end())
        return found->second(argc - 1,
                             argv + 1); // the class names the process, as its program would
    std::fputs("The first argument names a class:\n", stderr);
    for (const auto &[name, run] : classes())
        std::fprintf(stderr, "  %s\n", name.data());
    return EXIT_FAILURE;
}
