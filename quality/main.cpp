#include "QualityRun.h"
#include "cutout/AppError.h"

#include <QGuiApplication>

#include <cstdio>
#include <cstdlib>

int main(int argc, char *argv[])
{
    // Pictures only, no window: it runs the same with a display and without.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    try {
        QualityRun(QualityOptions::fromArguments(QGuiApplication::arguments())).execute();
    } catch (const AppError &error) {
        std::fprintf(stderr, "ry-quality: %s\n", qPrintable(error.message()));
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
