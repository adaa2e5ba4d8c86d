// lumora-desk: asks a database questions, for people who know no SQL.

#include "apps/lumora-desk/commandline.h"
#include "apps/lumora-desk/mainwindow.h"
#include "apps/lumora-desk/sampledatabase.h"

#include <QApplication>

#include <cstdio>

namespace {

// Help and complaints need no screen.
lumora::desk::CommandLine readCommandLine(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    return lumora::desk::parseCommandLine(QCoreApplication::arguments());
}

} // namespace

int main(int argc, char** argv) {
    using namespace lumora::desk;
    QCoreApplication::setOrganizationName("Lumora");
    QCoreApplication::setApplicationName("lumora-desk");
    QCoreApplication::setApplicationVersion(LUMORA_VERSION);
    const CommandLine line = readCommandLine(argc, argv);
    if (!line.error.isEmpty()) {
        std::fprintf(stderr, "lumora-desk: %s\n", line.error.toUtf8().constData());
        return 2;
    }
    if (!line.output.isEmpty()) {
        std::fputs(line.output.toUtf8().constData(), stdout);
        return 0;
    }

    QApplication::setHighDpiScaleFactorRoundingPolicy(Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
    const QApplication application(argc, argv);
    QApplication::setApplicationDisplayName("Lumora Desk");
    MainWindow window;
    window.show();
    if (line.open)
        window.open(*line.open);
    else if (!sampleFolder().isEmpty())
        window.openSample();
    return QApplication::exec();
}
