#include "RyHeapPolicy.h"
#include "background/PaintThreads.h"
#include "window/MainWindow.h"

#include <QApplication>
#include <QCommandLineParser>

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("rycut-studio"));
    QApplication::setApplicationDisplayName(QStringLiteral("RyCut Studio"));
    QApplication::setApplicationVersion(QStringLiteral(RY_VERSION));
    QCommandLineParser parser;
    parser.setApplicationDescription(
            QApplication::translate("main", "Cuts objects out of photographs."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument(QStringLiteral("picture"),
                                 QApplication::translate("main", "The picture to open."),
                                 QStringLiteral("[picture]"));
    parser.process(application);

    RyHeapPolicy::returnLargeBlocks();
    PaintThreads::reserve();
    MainWindow window;
    window.show();
    window.begin(parser.positionalArguments().value(0));
    return QApplication::exec();
}
