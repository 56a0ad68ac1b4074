#include "app/layoutprinter.h"
#include "app/statusmenucontroller.h"
#include "config/menustore.h"
#include "config/preferences.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QIcon>
#include <QTextStream>

namespace {

void describe(QCoreApplication &app, QCommandLineParser &parser)
{
    app.setOrganizationName(QStringLiteral("Quillon"));
    app.setApplicationName(QStringLiteral("Quillon"));
    app.setApplicationVersion(QStringLiteral(QUILLON_VERSION));
    parser.setApplicationDescription(QStringLiteral("A launcher in the panel."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addOption({QStringLiteral("print-layout"), QStringLiteral("Print the effective menu layout and exit.")});
}

// Diagnostics run without a display.
bool isDiagnostic(int argc, char **argv)
{
    for (int i = 1; i < argc; ++i) {
        const QByteArray arg(argv[i]);
        if (arg == "--print-layout" || arg == "--help" || arg == "-h" || arg == "--version" || arg == "-v")
            return true;
    }
    return false;
}

int runDiagnostic(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QCommandLineParser parser;
    describe(app, parser);
    parser.process(app);
    Preferences preferences;
    MenuStore store(preferences);
    QTextStream(stdout) << layoutText(store);
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    if (isDiagnostic(argc, argv))
        return runDiagnostic(argc, argv);

    QApplication app(argc, argv);
    QCommandLineParser parser;
    describe(app, parser);
    parser.process(app);
    app.setQuitOnLastWindowClosed(false);
    app.setWindowIcon(QIcon(QStringLiteral(":/icons/quillon.svg")));

    StatusMenuController statusMenu;
    return app.exec();
}
