#pragma once
#include <QApplication>
#include <QTest>

/// The test classes of one program; its first argument names the one to run, the others are Qt's.
namespace TestClasses {

using Run = int (*)(int argc, char **argv);

bool add(const char *name, Run run); ///< before main(), hence an answer to initialise with

template <typename Test, typename Application>
int run(int argc, char **argv)
{
    const Application application(argc, argv);
    Test test;
    return QTest::qExec(&test, argc, argv);
}

} // namespace TestClasses

/// Stands where QTEST_MAIN would; Application is what the class needs, QCoreApplication at the least.
#define RY_TEST_CLASS(Test, Application)                                                           \
    static const bool isAdded = TestClasses::add(#Test, TestClasses::run<Test, Application>);
